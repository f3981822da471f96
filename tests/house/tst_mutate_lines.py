#!/usr/bin/python3
"""That mutate_lines.py breaks code, one line at a time, and nothing else."""

import sys
import unittest
from pathlib import Path

sys.path.insert(0, str(Path(__file__).resolve().parents[2] / "scripts"))
import mutate_lines  # noqa: E402


def ways(*statements):
    """What becomes of the first of the statements in the body of a function."""
    text = "int f()\n{\n" + "".join(f"    {statement}\n" for statement in statements) + "}\n"
    return {mutation.after.strip() for mutation in mutate_lines.mutations_of(text).get(3, [])}


class Mutations(unittest.TestCase):
    def test_a_comparison_is_turned_at_its_edge(self):
        self.assertIn("if (a <= b)", ways("if (a < b)", "    return;"))
        self.assertIn("if (a != b)", ways("if (a == b)", "    return;"))

    def test_template_brackets_streams_and_arrows_are_no_comparisons(self):
        self.assertEqual(set(), ways("std::vector<int> found;"))
        self.assertEqual(set(), ways("auto* const next = first->next;"))

    def test_sums_products_and_logic_are_swapped(self):
        self.assertIn("sum = a - b;", ways("sum = a + b;"))
        self.assertIn("sum -= a;", ways("sum += a;"))
        self.assertIn("return a || b;", ways("return a && b;"))

    def test_texts_are_not_subtracted(self):
        for statement in ('return "a" + b;', 'return b + "a";', 'return b + u" "_s;', "return b + 'c';"):
            self.assertEqual({"return {};"}, ways(statement), statement)

    def test_each_place_is_a_fault_of_its_own(self):
        self.assertLessEqual({"x = a - b + c;", "x = a + b - c;"}, ways("x = a + b + c;"))

    def test_numbers_go_one_up_and_one_down_but_not_below_nought(self):
        self.assertLessEqual({"x = 11;", "x = 9;"}, ways("x = 10;"))
        self.assertNotIn("x = -1;", ways("x = 0;"))
        self.assertIn("x = 1.5;", ways("x = 0.5;"))

    def test_names_with_digits_are_no_numbers(self):
        self.assertEqual(set(), ways("std::int64_t a2;"))

    def test_a_condition_is_negated_and_a_negation_taken_away(self):
        self.assertLessEqual({"if (a)", "if (!(!a))"}, ways("if (!a)", "    return;"))

    def test_a_declaration_in_a_condition_is_left_alone(self):
        self.assertNotIn("if (!(const auto a = b()))", ways("if (const auto a = b())", "    return;"))

    def test_calls_and_assignments_are_left_out(self):
        for statement in ("emitted(1);", "a.b(c);", "m_a->b(c);", "a = b;", "m_sum += a;", "++count;"):
            self.assertIn(";", ways(statement), statement)

    def test_declarations_are_not_left_out(self):
        for statement in ("const int a = b;", "QString text;", "auto x = y;"):
            self.assertNotIn(";", ways(statement), statement)

    def test_half_a_statement_is_not_left_out(self):
        text = "int f()\n{\n    int a = g(1,\n        h(2));\n    b(\n        c(x));\n}\n"
        kinds = {m.kind for found in mutate_lines.mutations_of(text).values() for m in found}
        self.assertNotIn("removal", kinds)

    def test_a_result_becomes_the_default_once(self):
        self.assertIn("return {};", ways("return a;"))
        self.assertNotIn("return {};", ways("return {};"))
        self.assertEqual({"return true;"}, ways("return false;"))

    def test_a_way_on_becomes_a_way_out(self):
        self.assertEqual({"break;"}, ways("continue;"))

    def test_comments_texts_asserts_includes_and_logging_are_left_alone(self):
        self.assertEqual(set(), ways("// a + b == 3"))
        self.assertEqual({";"}, ways('show("a + b == 3");'))
        for statement in ("Q_ASSERT(a == b);", "assert(a == 1);", "static_assert(a == 1);", "#if a == 1",
                          "qWarning() << a + b;", "appLog(a + b);", "std::cerr << a + b;", "using A = B;"):
            self.assertEqual(set(), ways(statement), statement)

    def test_raw_texts_of_several_lines_are_left_alone(self):
        self.assertEqual({}, mutate_lines.mutations_of('int f()\n{\n    a(R"(1 + 2\n x == 3\n)");\n}\n'))

    def test_outside_of_functions_only_constants_are_broken(self):
        text = ("namespace a {\nconstexpr int most = 10;\nint g(int x = 3);\nstruct B {\n    int c = 4;\n"
                "    int d() const { return 0; }\n    int e() const\n    {\n        return c + 1;\n    }\n};\n}\n")
        self.assertEqual({2, 9}, set(mutate_lines.mutations_of(text)))

    def test_constructors_templates_and_lambdas_are_functions(self):
        text = ("template <typename T>\nA::A(int b)\n    : m_b(b)\n{\n    b += 1;\n}\n"
                "void f()\n{\n    each([this](int c) {\n        a(c + 1);\n    });\n}\n")
        self.assertLessEqual({5, 10}, set(mutate_lines.mutations_of(text)))

    def test_a_mutant_keeps_its_line_numbers_and_differs_in_one_line(self):
        text = "int f()\n{\n    return 1;\n}\n"
        mutation = mutate_lines.mutations_of(text)[3][0]
        self.assertEqual(["int f()", "{", mutation.after, "}", ""],
                         mutation.applied(text).partition("#line 1\n")[2].split("\n"))

    def test_the_choice_repeats_with_its_seed_and_takes_each_line_once(self):
        sources = {"a.cpp": "int f()\n{\n" + "    x += 1;\n" * 40 + "}\n"}
        first = mutate_lines.chosen(sources, 1)
        self.assertEqual(first, mutate_lines.chosen(sources, 1))
        self.assertNotEqual(first, mutate_lines.chosen(sources, 2))
        self.assertEqual(40, len({mutation.line for _, mutation in first}))
        self.assertEqual(40, len(first))

    def test_the_test_of_the_class_comes_first_then_its_kin_then_quick_ones(self):
        tests = ["check_BrokerSwap", "check_Money", "check_Ledger", "check_MoneyText"]
        self.assertEqual(["check_Money", "check_MoneyText", "check_Ledger", "check_BrokerSwap"],
                         mutate_lines.likely_first(tests, "Money", {"check_BrokerSwap": 2.0, "check_Ledger": 1.0}))


if __name__ == "__main__":
    unittest.main()
