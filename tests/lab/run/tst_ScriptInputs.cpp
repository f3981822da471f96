#include "lab/run/ScriptInputs.h"
#include "support/TestMain.h"

#include <QFile>

using namespace Qt::StringLiterals;

/// What a script lets be changed, and how it is changed.
class tst_ScriptInputs final : public QObject {
    Q_OBJECT

    /// "name=literal" of each, joined by blanks.
    static QString names(const QString& script)
    {
        QStringList all;
        for (const lab::ScriptInput& input : lab::inputsOf(script))
            all.append(input.name + u'=' + input.literal);
        return all.join(u' ');
    }

    /// The script with one value changed, or "!" and the reason.
    static QString changed(const QString& script, const QString& name, const QString& value)
    {
        QString error;
        const std::optional<QString> text = lab::withInputs(script, {{name, value}}, error);
        return text ? *text : u'!' + error;
    }

private Q_SLOTS:
    void theExamplesHaveTheirInputs()
    {
        QFile file(QStringLiteral(PROJECT_ROOT "/resources/examples/MA_Cross.js"));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QList<lab::ScriptInput> inputs = lab::inputsOf(QString::fromUtf8(file.readAll()));
        QCOMPARE(inputs.size(), 3);
        QCOMPARE(inputs[0],
            (lab::ScriptInput{
                u"Fast"_s, u"10"_s, u"period of the fast EMA"_s, 3, lab::ScriptInput::Kind::Number}));
        QCOMPARE(inputs[2], (lab::ScriptInput{u"Lots"_s, u"0.10"_s, {}, 5, lab::ScriptInput::Kind::Number}));
    }

    void whatIsAnInput_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<QString>("inputs");
        QTest::newRow("kinds") << u"var a = -1.5; let b='x'; const c = \"y\"; var d = true; var e=false"_s
                               << u"a=-1.5 b='x' c=\"y\" d=true e=false"_s;
        QTest::newRow("numbers") << u"var a=.5;var b=5.;var c=1e-4;var d=0x1F;var e=+3;var f = - 2;"_s
                                 << u"a=.5 b=5. c=1e-4 d=0x1F e=+3 f=-2"_s;
        QTest::newRow("no semicolons")
            << u"var a = 1\nvar b = 'x'\nPrint(a)\nlet c = 2"_s << u"a=1 b='x' c=2"_s;
        QTest::newRow("the line goes on")
            << u"var a = 1\n+ 2;\nvar b = 'x'\n.length\nvar c = 3\n[0]\nvar d=4"_s << u"d=4"_s;
        QTest::newRow("expressions") << u"var a = 1 + 2; var b = -c; var d = f(1); var e; var g = null;"
                                        "var h = [1]; var i = `x`; var j = 10n; var k = 1, l = 2; var m=1"_s
                                     << u"m=1"_s;
        QTest::newRow("functions and blocks")
            << u"function f() { var a = 1; }\n{ let b = 2; }\n(function() { var c = 3; })();\nvar d = 4;"_s
            << u"d=4"_s;
        QTest::newRow("conditions") << u"if (x)\n var a = 1;\nelse\n var b = 2;\nwhile (y) var c = 3;\n"
                                       "for (var d = 4; d < 5;) var e = 5;\nf(x)\nvar g = 6;"_s
                                    << u"g=6"_s;
        QTest::newRow("comments")
            << u"// var a = 1;\n/* var b = 2;\nvar c = 3; */ var /*x*/ d /*y*/ = /*z*/ 4 /*;*/;"_s
            << u"d=4"_s;
        QTest::newRow("texts") << u"f(\"var a = 1;\\\"{\"); f('\\'{ var b = 2;'); var c = '}//';"_s
                               << u"c='}//'"_s;
        QTest::newRow("templates") << u"f(`{ ${ g(`}${'`'}`, {a: 1}) } \\` var a = 1; ${ {} }`); var b = 2;"_s
                                   << u"b=2"_s;
        QTest::newRow("regular expressions")
            << u"var a = /[/{'\"`]\\/{/g; var b = 1; if (x) /{/.test(y); x = y / z; var c = 2; // /\n"
               "x = (y) / 2; var d = '{'; x = a.return / 2; var e = 5 / 2; var f = 3; function g() "
               "{}\n/{/.test(h)"
               "\nvar i=1"_s
            << u"b=1 c=2 d='{' f=3 i=1"_s;
        QTest::newRow("names")
            << u"var $a_1 = 1; var größe = 2; var o = {var: 3, let: 4}; o.var = 5; var b=1"_s
            << u"$a_1=1 größe=2 b=1"_s;
        QTest::newRow("twice") << u"var a = 1; var b = 2; var a = 3;"_s << u"b=2 a=3"_s;
        QTest::newRow("line ends within") << u"var a = 'x\\\ny'; var b = -\n1; var c = 3"_s << u"c=3"_s;
        QTest::newRow("broken scripts")
            << u"var a = 'x\\'\nvar b = 1; ))}} var c = 2; f({[ var d = 3; /* var e = 4"_s << u"b=1 c=2"_s;
        QTest::newRow("empty") << QString() << QString();
        QTest::newRow("only a beginning") << u"var"_s << QString();
        QTest::newRow("ends within") << u"var a ="_s << QString();
        QTest::newRow("ends after a sign") << u"var a = -"_s << QString();
        QTest::newRow("ends after a backslash") << u"var b = 1; var a = '\\"_s << u"b=1"_s;
    }

    void whatIsAnInput()
    {
        QFETCH(QString, script);
        QFETCH(QString, inputs);
        QCOMPARE(names(script), inputs);
    }

    void linesAndCommentsAreThoseOfTheInput()
    {
        const QList<lab::ScriptInput> inputs = lab::inputsOf(
            u"/* 1\r\n2 */ var a = 1; //  first \r\nf(`\n`); 'x\\\n';\rvar b = 2 // second\nvar c = 3; /* no */"_s);
        QCOMPARE(inputs.size(), 3);
        QCOMPARE(inputs[0].line, 2);
        QCOMPARE(inputs[0].comment, u"first"_s);
        QCOMPARE(inputs[1].line, 6);
        QCOMPARE(inputs[1].comment, u"second"_s);
        QCOMPARE(inputs[2].line, 7);
        QCOMPARE(inputs[2].comment, QString());
    }

    void noRegularExpressionGoesOnBehindItsLine()
    {
        const QList<lab::ScriptInput> inputs = lab::inputsOf(u"x = /a\\\nvar a = 1; // b\nvar b = 2\n"_s);
        QCOMPARE(inputs.size(), 2);
        QCOMPARE(inputs[0].line, 2);
        QCOMPARE(inputs[1].line, 3);
    }

    void aNumberStandsRightBehindItsSign()
    {
        // On another line than its sign it would be no input any more.
        for (const char* value : {"-\r0", "-\n5", "+ 5"}) {
            QString error;
            QVERIFY(!lab::withInputs(u"var a = 1\n"_s, {{u"a"_s, QString::fromLatin1(value)}}, error));
            QVERIFY(!error.isEmpty());
        }
    }

    void whatStandsBehindAnOpenRegularExpressionIsNoInput()
    {
        // With a slash in its value, the input would be gone.
        const QString script = u"x = /a; var a = 'b'\nvar b = 2\n"_s;
        const QList<lab::ScriptInput> inputs = lab::inputsOf(script);
        QCOMPARE(inputs.size(), 1);
        QCOMPARE(inputs[0].name, u"b"_s);
        QCOMPARE(inputs[0].line, 2);
    }

    void noEscapedNameGoesOnBehindItsLine()
    {
        const QList<lab::ScriptInput> inputs
            = lab::inputsOf(u"x = \\u{ 3 }\nvar a = 1;\nx = \\u{\n} var b = 2\n"_s);
        QCOMPARE(inputs.size(), 2);
        QCOMPARE(inputs[0].line, 2);
        QCOMPARE(inputs[1].line, 4);
    }

    void whatTheScriptChangesItselfIsMarked_data()
    {
        QTest::addColumn<QString>("script");
        QTest::addColumn<bool>("isChanged");
        for (const char* use :
            {"a = 2", "a=-2", "a\n= 2", "a /* = */ = b", "a += 2", "a **= 2", "a >>>= 1", "a ||= 2",
                "a ?\?= 2", "a /= 2", "a++", "++a", "(--a)", "if (a = b) c()", "b = a = 3", "b\n++a"})
            QTest::newRow(use) << QString::fromLatin1(use) << true;
        for (const char* use : {"a == 2", "a === 2", "a <= 2", "a >= 2", "a != 2", "a => 2", "b = a",
                 "b = -a", "c.a = 2", "c.a++", "'a = 2'", "// a = 2", "/* a = 2 */", "`a = 2`", "/a = 2/",
                 "var b = a\n++c", "b++\na", "b = {a: 2}", "aa = 2", "a + 2", "a ? b : c"})
            QTest::newRow(use) << QString::fromLatin1(use) << false;
    }

    void whatTheScriptChangesItselfIsMarked()
    {
        QFETCH(QString, script);
        QFETCH(bool, isChanged);
        const auto inputs
            = lab::inputsOf(u"let a = 1; // a = 0\nconst d = 2;\nfunction f() { "_s + script + u"\n}\n"_s);
        QCOMPARE(inputs.size(), 2);
        QCOMPARE(inputs[0].isChanged, isChanged);
        QVERIFY(!inputs[1].isChanged);
    }

    void onlyTheLiteralChanges()
    {
        const QString script
            = u"// a = 1\nvar a = 1; // a = 1\nvar b = '1'; function f() { var a = 1; return a }\r\na;"_s;
        QString error;
        QCOMPARE(lab::withInputs(script, {{u"b"_s, u"two"_s}, {u"a"_s, u"-20.5"_s}}, error),
            std::optional(
                u"// a = 1\nvar a = -20.5; // a = 1\nvar b = 'two'; function f() { var a = 1; return a "
                "}\r\na;"_s));
        QCOMPARE(lab::withInputs(script, {}, error), std::optional(script));
        QCOMPARE(changed(u"var a = - /* sign */ 1;"_s, u"a"_s, u"2"_s), u"var a = 2;"_s);
        QCOMPARE(changed(u"var a=1;var a=2;"_s, u"a"_s, u"3"_s), u"var a=1;var a=3;"_s);
    }

    void numbersStayNumbers_data()
    {
        QTest::addColumn<QString>("value");
        QTest::addColumn<bool>("isTaken");
        for (const char* value :
            {"0", "-0", "20", "+3", " 7 ", "1.5", ".5", "5.", "1e-4", "-1E+4", "0x1f", "0b101", "0o17"})
            QTest::newRow(value) << QString::fromLatin1(value) << true;
        for (const char* value : {"", "-", ".", "1,5", "1;2", "1 2", "1e999", "Infinity", "NaN", "true", "x",
                 "'1'", "010", "1_000", "10n", "--1", "0x", "0xg", "1e", "1//", "1/*", "1+1", "0b2", "1\n2"})
            QTest::newRow(value) << QString::fromLatin1(value) << false;
    }

    void numbersStayNumbers()
    {
        QFETCH(QString, value);
        QFETCH(bool, isTaken);
        const QString text = changed(u"var a = 1;"_s, u"a"_s, value);
        QCOMPARE(text,
            isTaken
                ? u"var a = "_s + value.trimmed() + u';'
                : u"!a must be a number, such as 1, and not "_s + (value.isEmpty() ? u"nothing"_s : value));
    }

    void textsAreQuotedAsTheyMustBe()
    {
        QCOMPARE(changed(u"var a = 'x';"_s, u"a"_s, u"it's \\ \"so\""_s), u"var a = 'it\\'s \\\\ \"so\"';"_s);
        QCOMPARE(changed(u"var a = \"x\";"_s, u"a"_s, u"it's \"so\""_s), u"var a = \"it's \\\"so\\\"\";"_s);
        QCOMPARE(changed(u"var a = 'x';"_s, u"a"_s, u"one\ntwo\r\u2028"_s),
            u"var a = 'one\\ntwo\\u000d\\u2028';"_s);
        QCOMPARE(changed(u"var a = 'x';"_s, u"a"_s, QString()), u"var a = '';"_s);
        QCOMPARE(changed(u"var a = 'x';"_s, u"a"_s, u"\"given\\n\""_s), u"var a = \"given\\n\";"_s);
        QCOMPARE(changed(u"var a = 'x';"_s, u"a"_s, u"'open\\'"_s), u"var a = '\\'open\\\\\\'';"_s);
        QCOMPARE(changed(u"var a = 'x';"_s, u"a"_s, u"'; quit(); '"_s), u"var a = '; quit(); ';"_s);
        QCOMPARE(changed(u"var a = 'x';"_s, u"a"_s, u"'a' + 'b'"_s), u"var a = '\\'a\\' + \\'b\\'';"_s);
        QCOMPARE(changed(u"var a = 'x';"_s, u"a"_s, u"20"_s), u"var a = '20';"_s);
    }

    void truthsStayTruths()
    {
        QCOMPARE(changed(u"let a = true;"_s, u"a"_s, u"false"_s), u"let a = false;"_s);
        QCOMPARE(changed(u"let a = true;"_s, u"a"_s, u"1"_s), u"!a must be true or false, and not 1"_s);
        QCOMPARE(
            changed(u"let a = true;"_s, u"a"_s, QString()), u"!a must be true or false, and not nothing"_s);
    }

    void anUnknownInputIsAnsweredWithThoseThatThereAre()
    {
        QCOMPARE(changed(u"var a = 1; var b = 2;"_s, u"c"_s, u"1"_s),
            u"!The script has no input c; it has a, b"_s);
        QCOMPARE(changed(u"var a = 1; var b = 2;"_s, u"A"_s, u"1"_s),
            u"!The script has no input A; it has a, b"_s);
        QCOMPARE(changed(u"f();"_s, u"c"_s, u"1"_s), u"!The script has no inputs, and so no c"_s);
        QCOMPARE(changed(u"var a = 1; var b = 2; b += 1;"_s, u"c"_s, u"1"_s),
            u"!The script has no input c; it has a"_s);
    }

    void anInputIsGivenOnce()
    {
        QString error;
        QVERIFY(!lab::withInputs(u"var a = 1;"_s, {{u"a"_s, u"1"_s}, {u"a"_s, u"2"_s}}, error));
        QCOMPARE(error, u"a is given twice"_s);
    }

    void anyBeginningOfAScriptIsReadToItsEnd()
    {
        const QString script = u"var a = 1; `x${ {b: /[/]/} }y${'\\''}` // c\n/* d */ var e = -.5e-3\n"
                               "if (f) { g('\\\n') } else /h/.i\n\\u{41} \\u0041 #! ` ${ `"_s;
        for (qsizetype length = 0; length <= script.size(); ++length) {
            const QString part = script.first(length);
            QString error;
            QCOMPARE(lab::withInputs(part, {}, error), std::optional(part));
            for (qsizetype start = 0; start < length; ++start)
                QVERIFY(lab::inputsOf(script.sliced(start, length - start)).size() <= 2);
        }
    }
};

TAVORAN_TEST(tst_ScriptInputs)
#include "tst_ScriptInputs.moc"
