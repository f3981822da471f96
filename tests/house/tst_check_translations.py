#!/usr/bin/python3
"""That check_translations.py sees what is wrong with a translation."""

import unittest
import xml.etree.ElementTree as ElementTree

from check_translations import Text, compare, menu_letters


def text(source, translation, context="Pane", state=""):
    message = ElementTree.Element("message")
    ElementTree.SubElement(message, "source").text = source
    element = ElementTree.SubElement(message, "translation", {"type": state} if state else {})
    if isinstance(translation, list):
        message.set("numerus", "yes")
        for form in translation:
            ElementTree.SubElement(element, "numerusform").text = form
    else:
        element.text = translation
    return Text(context, message)


class Faults(unittest.TestCase):
    def assertFaults(self, source, translation, count, **more):
        self.assertEqual(count, len(list(text(source, translation, **more).faults())))

    def test_a_good_translation_has_none(self):
        self.assertFaults("<b>%1</b>\n&Close %2\tF8", "<b>%2</b>\n%1 &schließen\tF8", 0)

    def test_what_must_stay_is_missed(self):
        for source, translation in (
            ("%1 of %2", "%1 von 2"),
            ("%1 and %1", "%1"),
            ("<b>%1</b>", "%1"),
            ("&File", "Datei"),
            ("File", "&Datei"),
            ("Data Window\tCtrl+D", "Datenfenster\tStrg+E"),
            ("Data Window\tCtrl+D", "Datenfenster"),
            ("one\ntwo", "eins zwei"),
            (" — Challenge", "— Challenge"),
        ):
            with self.subTest(source):
                self.assertFaults(source, translation, 1)

    def test_a_key_bears_the_name_that_is_on_it(self):
        self.assertFaults("Data Window\tCtrl+D", "Datenfenster\tStrg+D", 0)

    def test_each_form_of_a_plural_is_looked_at(self):
        self.assertFaults("%1 bars", ["%1 Balken", "Balken"], 1)
        self.assertFaults("%1 bars", ["%1 Balken", ""], 1)

    def test_what_is_not_translated_is_seen(self):
        self.assertFaults("Close", "", 1, state="unfinished")
        self.assertFaults("Close", "Schließen", 1, state="vanished")
        self.assertFaults("Close", "", 1)

    def test_two_menus_with_one_letter_are_seen(self):
        menus = [text("&File", "&Datei", "MenuBar"), text("&View", "An&dere", "MenuBar")]
        self.assertEqual(1, len(list(menu_letters(menus))))

    def test_texts_that_came_or_went_are_seen(self):
        one, other = text("One", "Eins").key(), text("Other", "Andere").key()
        self.assertEqual(2, len(list(compare("de", {one}, {other}))))
        self.assertEqual([], list(compare("de", {one}, {one})))


if __name__ == "__main__":
    unittest.main()
