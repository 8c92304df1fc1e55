// SwissKnife formulas, evaluated through real IntSwissKnife and SwissKnife
// nodes with variables A = 6 and B = -3 and the constant C = 2.5.
#include "genapitest.h"

#include <cmath>

using namespace GenApi;
using GenApiTest::Device;

namespace {

std::string knife(const char *type, const std::string &formula)
{
    return std::string("<Integer Name=\"A\"><Value>6</Value></Integer>"
                       "<Integer Name=\"B\"><Value>-3</Value></Integer><")
        + type
        + " Name=\"F\"><pVariable Name=\"A\">A</pVariable>"
          "<pVariable Name=\"B\">B</pVariable><Constant Name=\"C\">2.5</Constant>"
          "<Expression Name=\"TWICE_A\">A * 2</Expression><Formula>"
        + GenApiTest::xmlEscape(formula) + "</Formula></" + type + ">";
}

} // namespace

class tst_GenApiFormula : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void integerFormulas_data();
    void integerFormulas();
    void floatFormulas_data();
    void floatFormulas();
    void runtimeErrors_data();
    void runtimeErrors();
    void syntaxErrors_data();
    void syntaxErrors();
    void formulaFollowsItsVariables();
};

void tst_GenApiFormula::integerFormulas_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<qint64>("expected");
    const struct {
        const char *formula;
        qint64 expected;
    } rows[] = {
        { "1 + 2 * 3", 7 },
        { "(1 + 2) * 3", 9 },
        { "7 / 2", 3 },
        { "-7 / 2", -3 },
        { "7 % 3", 1 },
        { "2 ** 10", 1024 },
        { "2 ** 3 ** 2", 512 },
        { "1 << 4", 16 },
        { "256 >> 4", 16 },
        { "-16 >> 2", -4 },
        { "1 << 64", 0 },
        { "6 & 3", 2 },
        { "6 | 3", 7 },
        { "6 ^ 3", 5 },
        { "~0", -1 },
        { "!0", 1 },
        { "A = 6", 1 },
        { "A == 6", 1 },
        { "A <> 6", 0 },
        { "A != 6", 0 },
        { "A > B", 1 },
        { "A < B", 0 },
        { "A <= 6", 1 },
        { "A >= 7", 0 },
        { "A && 0", 0 },
        { "A || 0", 1 },
        { "A = 6 && B = -3", 1 },
        { "A > B ? 10 : 20", 10 },
        { "0 ? 1 : 0 ? 2 : 3", 3 },
        { "(A & 0x4) ? 9 : 1", 9 },
        { "SGN(B)", -1 },
        { "NEG(A)", -6 },
        { "ABS(B)", 3 },
        { "0x10 + 0X0f", 31 },
        { "0xFFFFFFFFFFFFFFFF", -1 },
        { "A * B", -18 },
        { "TWICE_A + 1", 13 },
        { "C * 2", 4 }, // constants truncate toward the integer in integer formulas
        { "9223372036854775807 + 1", std::numeric_limits<qint64>::min() },
        { "TRUNC(7 / 2)", 3 },
        { "3 - 2 - 1", 0 },
        { "64 / 4 / 2", 8 },
        { "  A\t+\nB  ", 3 },
    };
    for (const auto &row : rows)
        QTest::newRow(row.formula) << QString::fromUtf8(row.formula) << row.expected;
}

void tst_GenApiFormula::integerFormulas()
{
    QFETCH(QString, formula);
    QFETCH(qint64, expected);
    Device device(knife("IntSwissKnife", formula.toStdString()));
    CIntegerPtr f(device.node("F"));
    QCOMPARE(f->GetValue(), int64_t(expected));
    QCOMPARE(f->GetAccessMode(), RO);
}

void tst_GenApiFormula::floatFormulas_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<double>("expected");
    const double pi = 3.14159265358979323846;
    const struct {
        const char *formula;
        double expected;
    } rows[] = {
        { "C * 2", 5.0 },
        { "7 / 2", 3.5 },
        { "A / 4", 1.5 },
        { "SQRT(16)", 4.0 },
        { "EXP(0)", 1.0 },
        { "LN(E)", 1.0 },
        { "LG(1000)", 3.0 },
        { "COS(0)", 1.0 },
        { "SIN(0)", 0.0 },
        { "TAN(0)", 0.0 },
        { "ATAN(1) * 4", pi },
        { "ASIN(1) * 2", pi },
        { "ACOS(1)", 0.0 },
        { "TRUNC(-2.7)", -2.0 },
        { "FLOOR(-2.5)", -3.0 },
        { "CEIL(2.1)", 3.0 },
        { "ROUND(2.5)", 3.0 },
        { "ROUND(1.2345, 2)", 1.23 },
        { "PI", pi },
        { "2 ** 0.5", std::sqrt(2.0) },
        { "1e3 + .5", 1000.5 },
        { "7.5 % 2", 1.5 },
        { "B < 0 ? -B : B", 3.0 },
        { "(6 & 3) + 0.5", 2.5 },
        { "sqrt(9)", 3.0 },
    };
    for (const auto &row : rows)
        QTest::newRow(row.formula) << QString::fromUtf8(row.formula) << row.expected;
}

void tst_GenApiFormula::floatFormulas()
{
    QFETCH(QString, formula);
    QFETCH(double, expected);
    Device device(knife("SwissKnife", formula.toStdString()));
    CFloatPtr f(device.node("F"));
    QVERIFY2(std::fabs(f->GetValue() - expected) < 1e-12,
             qPrintable(QString::number(f->GetValue(), 'g', 17)));
}

void tst_GenApiFormula::runtimeErrors_data()
{
    QTest::addColumn<QString>("type");
    QTest::addColumn<QString>("formula");
    QTest::newRow("integer division by zero")
        << QStringLiteral("IntSwissKnife") << QStringLiteral("A / (B + 3)");
    QTest::newRow("integer remainder by zero")
        << QStringLiteral("IntSwissKnife") << QStringLiteral("A % 0");
    QTest::newRow("float division by zero")
        << QStringLiteral("SwissKnife") << QStringLiteral("C / (A - 6)");
    QTest::newRow("zero to a negative power")
        << QStringLiteral("IntSwissKnife") << QStringLiteral("0 ** -1");
}

void tst_GenApiFormula::runtimeErrors()
{
    QFETCH(QString, type);
    QFETCH(QString, formula);
    Device device(knife(type.toUtf8().constData(), formula.toStdString()));
    CValuePtr f(device.node("F"));
    VERIFY_THROWS(f->ToString(), "RuntimeException", "Node 'F': formula '");
    VERIFY_THROWS(f->ToString(), "RuntimeException", "by zero");
}

void tst_GenApiFormula::syntaxErrors_data()
{
    QTest::addColumn<QString>("formula");
    QTest::addColumn<QString>("fragment");
    QTest::newRow("open bracket") << QStringLiteral("(((") << QStringLiteral("unexpected end");
    QTest::newRow("missing operand") << QStringLiteral("1 +") << QStringLiteral("unexpected end");
    QTest::newRow("two numbers") << QStringLiteral("1 2") << QStringLiteral("unexpected '2'");
    QTest::newRow("unknown function")
        << QStringLiteral("FOO(1)") << QStringLiteral("unknown function 'FOO'");
    QTest::newRow("wrong argument count")
        << QStringLiteral("COS(1, 2)") << QStringLiteral("wrong number of arguments to COS");
    QTest::newRow("unclosed call") << QStringLiteral("SIN(1") << QStringLiteral("expected ')'");
    QTest::newRow("missing colon") << QStringLiteral("1 ? 2") << QStringLiteral("expected ':'");
    QTest::newRow("stray character") << QStringLiteral("1 $ 2") << QStringLiteral("unexpected '$'");
    QTest::newRow("malformed number")
        << QStringLiteral("12abc") << QStringLiteral("malformed number");
    QTest::newRow("empty") << QString() << QStringLiteral("has no Formula");
    // Deep nesting must end in an error, not a stack overflow.
    QTest::newRow("nesting 5000 deep")
        << QString(5000, QLatin1Char('(')) + QStringLiteral("1") + QString(5000, QLatin1Char(')'))
        << QStringLiteral("nests deeper than");
    QTest::newRow("5000 unary minus") << QString(5000, QLatin1Char('-')) + QStringLiteral("1")
                                      << QStringLiteral("nests deeper than");
}

void tst_GenApiFormula::syntaxErrors()
{
    QFETCH(QString, formula);
    QFETCH(QString, fragment);
    CNodeMapRef map;
    const QString what = GenApiTest::thrown([&] {
        map._LoadXMLFromString(
            GenApiTest::description(knife("IntSwissKnife", formula.toStdString())).c_str());
    });
    QVERIFY2(what.startsWith(QStringLiteral("PropertyException: line ")), qPrintable(what));
    QVERIFY2(what.contains(QStringLiteral("node 'F'")), qPrintable(what));
    QVERIFY2(what.contains(fragment), qPrintable(what.left(300)));
}

void tst_GenApiFormula::formulaFollowsItsVariables()
{
    Device device(knife("IntSwissKnife", "A * 10 + B"));
    CIntegerPtr f(device.node("F"));
    CIntegerPtr a(device.node("A"));
    QCOMPARE(f->GetValue(), int64_t(57));
    a->SetValue(1);
    QCOMPARE(f->GetValue(), int64_t(7));
}

QTEST_APPLESS_MAIN(tst_GenApiFormula)
#include "tst_genapi_formula.moc"
