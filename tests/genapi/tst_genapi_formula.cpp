// SwissKnife formulas, evaluated through real IntSwissKnife and SwissKnife
// nodes with variables A = 6 and B = -3 and the constant C = 2.5.
#include "genapitest.h"

#include <cmath>
#include <limits>

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
    void intConverterWithFloatFormula();
    void notANumberIsAnError();
    void converterLimits_data();
    void converterLimits();
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
        { "C * 2", 5 }, // a constant with a fraction makes the formula a float one
        { "9223372036854775807 + 1", std::numeric_limits<qint64>::min() },
        { "TRUNC(7 / 2)", 3 },
        { "3 - 2 - 1", 0 },
        { "64 / 4 / 2", 8 },
        { "  A\t+\nB  ", 3 },
        // A formula that needs floating point is evaluated in double and
        // rounded once; an integral one keeps integer arithmetic.
        { "0.5 * A", 3 },
        { "A * 0.25", 2 }, // 1.5, halfway away from zero
        { "B * 0.5", -2 }, // -1.5
        { "0.29 * 100", 29 }, // 28.999999999999996 in double
        { "COS(PI)", -1 },
        { "ROUND(10.9)", 11 },
        { "TRUNC(10.9)", 10 },
        { "SQRT(A * 6)", 6 },
        { "LN(E)", 1 },
        { "ROUND(A / 4, 1) * 10", 15 }, // with digits: 6 / 4 = 1.5 in double
        { "7.5 / 2", 4 }, // the whole formula in double: 3.75
        { "1e30 > A", 1 },
        { "C + A", 9 }, // the constant C = 2.5: 8.5
        { "A / 4 + C * 0", 2 }, // C makes the whole formula a float one: 1.5
        { "ATAN(1) * 4 * 1000", 3142 },
        // Integral literals keep integer arithmetic and its division.
        { "2.0 * A", 12 },
        { "7 / 2 + 0.0", 3 },
        { "(A + 1) / 2", 3 },
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

// An expression that needs floating point carries the need to the formula
// that uses it, and an IntConverter reads through such a formula.
void tst_GenApiFormula::intConverterWithFloatFormula()
{
    Device device("<Integer Name=\"Raw\"><Value>50</Value></Integer>"
                  "<IntConverter Name=\"C\"><Expression Name=\"TENTH\">0.1</Expression>"
                  "<FormulaTo>FROM * 10</FormulaTo><FormulaFrom>TENTH * TO</FormulaFrom>"
                  "<pValue>Raw</pValue></IntConverter>"
                  "<IntConverter Name=\"D\"><FormulaTo>10 * FROM</FormulaTo>"
                  "<FormulaFrom>0.1 * TO</FormulaFrom><pValue>Raw</pValue></IntConverter>");
    CIntegerPtr c(device.node("C"));
    CIntegerPtr d(device.node("D"));
    QCOMPARE(c->GetValue(), int64_t(5));
    QCOMPARE(d->GetValue(), int64_t(5));
    d->SetValue(7);
    QCOMPARE(CIntegerPtr(device.node("Raw"))->GetValue(), int64_t(70));
    QCOMPARE(d->GetValue(), int64_t(7));
}

void tst_GenApiFormula::notANumberIsAnError()
{
    Device device(knife("IntSwissKnife", "SQRT(B)"));
    CIntegerPtr f(device.node("F"));
    VERIFY_THROWS(f->GetValue(), "RuntimeException", "has no integer value");
}

// Converter limits are FormulaFrom at the raw limits without wrapping, and
// a value inside them can be written.
void tst_GenApiFormula::converterLimits_data()
{
    QTest::addColumn<QString>("converter");
    QTest::addColumn<QString>("raw");
    QTest::addColumn<double>("low");
    QTest::addColumn<double>("high");
    QTest::addColumn<double>("written");
    QTest::addColumn<double>("rawAfter");
    QTest::addColumn<double>("readBack");
    const double int64Min = double(std::numeric_limits<int64_t>::min());
    const double int64Max = double(std::numeric_limits<int64_t>::max());
    const double dblMax = std::numeric_limits<double>::max();
    QTest::newRow("IntConverter over an unbounded integer, scaled by 100")
        << "<IntConverter Name=\"F\"><Constant Name=\"TEN\">10</Constant>"
           "<Expression Name=\"XPLUS2\">TEN</Expression>"
           "<FormulaFrom>TO * TEN * XPLUS2</FormulaFrom><FormulaTo>FROM / XPLUS2</FormulaTo>"
           "<pValue>Raw</pValue></IntConverter>"
        << "<Integer Name=\"Raw\"><Value>100</Value></Integer>" << int64Min << int64Max << 100.0
        << 10.0 << 1000.0; // the two formulas of this description are not inverses
    QTest::newRow("IntConverter keeps integer division at its limits")
        << "<IntConverter Name=\"F\"><FormulaFrom>TO / 2</FormulaFrom>"
           "<FormulaTo>FROM * 2</FormulaTo><pValue>Raw</pValue></IntConverter>"
        << "<Integer Name=\"Raw\"><Value>0</Value><Min>-5</Min><Max>5</Max></Integer>" << -2.0
        << 2.0 << 2.0 << 4.0 << 2.0;
    QTest::newRow("IntConverter, decreasing, beyond the int64 range")
        << "<IntConverter Name=\"F\"><FormulaFrom>0 - TO * 4</FormulaFrom>"
           "<FormulaTo>0 - FROM / 4</FormulaTo><pValue>Raw</pValue></IntConverter>"
        << "<Integer Name=\"Raw\"><Value>0</Value></Integer>" << int64Min << int64Max << -400.0
        << 100.0 << -400.0;
    QTest::newRow("Converter whose formula overflows a double")
        << "<Converter Name=\"F\"><FormulaFrom>TO * 1e300 * 1e300</FormulaFrom>"
           "<FormulaTo>FROM / 1e300 / 1e300</FormulaTo><pValue>Raw</pValue></Converter>"
        << "<Float Name=\"Raw\"><Value>0</Value><Min>-1</Min><Max>1</Max></Float>" << -dblMax
        << dblMax << dblMax << 0.0 << dblMax;
}

void tst_GenApiFormula::converterLimits()
{
    QFETCH(QString, converter);
    QFETCH(QString, raw);
    QFETCH(double, low);
    QFETCH(double, high);
    QFETCH(double, written);
    QFETCH(double, rawAfter);
    QFETCH(double, readBack);
    Device device((converter + raw).toStdString());
    CValuePtr rawValue(device.node("Raw"));
    if (CIntegerPtr f = CIntegerPtr(device.node("F"))) {
        QCOMPARE(double(f->GetMin()), low);
        QCOMPARE(double(f->GetMax()), high);
        f->SetValue(int64_t(written));
        QCOMPARE(double(f->GetValue()), readBack);
    } else {
        CFloatPtr g(device.node("F"));
        QCOMPARE(g->GetMin(), low);
        QCOMPARE(g->GetMax(), high);
        g->SetValue(written);
        QCOMPARE(g->GetValue(), readBack);
    }
    QCOMPARE(QString::fromUtf8(rawValue->ToString().c_str()).toDouble(), rawAfter);
}

QTEST_APPLESS_MAIN(tst_GenApiFormula)
#include "tst_genapi_formula.moc"
