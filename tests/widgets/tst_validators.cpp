#include "widgets/int64validator.h"
#include "widgets/ip4validator.h"

#include <QSignalSpy>
#include <QtTest>

#include "widgettest.h"

#include <limits>

using namespace OrbGui;
using namespace WidgetTest;

Q_DECLARE_METATYPE(QValidator::State)

class tst_Validators : public QObject {
    Q_OBJECT

private Q_SLOTS:
    void initTestCase_data() { addLocaleRows(); }
    void init() { applyLocaleRow(); }
    void int64_data();
    void int64();
    void int64Signals();
    void ip4_data();
    void ip4();
    void ip4Conversions_data();
    void ip4Conversions();
};

void tst_Validators::int64_data()
{
    QTest::addColumn<qlonglong>("bottom");
    QTest::addColumn<qlonglong>("top");
    QTest::addColumn<int>("base");
    QTest::addColumn<QString>("input");
    QTest::addColumn<QValidator::State>("state");
    const qlonglong min = std::numeric_limits<qlonglong>::min();
    const qlonglong max = std::numeric_limits<qlonglong>::max();
    QTest::newRow("empty") << 0LL << 100LL << 10 << "" << QValidator::Intermediate;
    QTest::newRow("minus, bottom negative") << -5LL << 5LL << 10 << "-" << QValidator::Intermediate;
    QTest::newRow("minus, bottom zero") << 0LL << 5LL << 10 << "-" << QValidator::Invalid;
    QTest::newRow("not a number") << 0LL << 100LL << 10 << "1x" << QValidator::Invalid;
    QTest::newRow("in range") << 0LL << 100LL << 10 << "42" << QValidator::Acceptable;
    QTest::newRow("below a positive bottom")
        << 10LL << 100LL << 10 << "5" << QValidator::Intermediate;
    QTest::newRow("above the top") << 10LL << 100LL << 10 << "500" << QValidator::Invalid;
    QTest::newRow("negative, bottom positive")
        << 10LL << 100LL << 10 << "-5" << QValidator::Invalid;
    QTest::newRow("both negative: small positive")
        << -100LL << -10LL << 10 << "5" << QValidator::Intermediate;
    QTest::newRow("both negative: large positive")
        << -100LL << -10LL << 10 << "150" << QValidator::Invalid;
    QTest::newRow("both negative: in range")
        << -100LL << -10LL << 10 << "-50" << QValidator::Acceptable;
    QTest::newRow("both negative: below") << -100LL << -10LL << 10 << "-500" << QValidator::Invalid;
    QTest::newRow("across zero: in range")
        << -100LL << 100LL << 10 << "-100" << QValidator::Acceptable;
    QTest::newRow("across zero: above") << -100LL << 100LL << 10 << "101" << QValidator::Invalid;
    QTest::newRow("across zero: below") << -100LL << 100LL << 10 << "-101" << QValidator::Invalid;
    QTest::newRow("hexadecimal") << 0LL << 255LL << 16 << "ff" << QValidator::Acceptable;
    QTest::newRow("hexadecimal above") << 0LL << 255LL << 16 << "100" << QValidator::Invalid;
    QTest::newRow("full range maximum")
        << min << max << 10 << "9223372036854775807" << QValidator::Acceptable;
    QTest::newRow("full range minimum")
        << min << max << 10 << "-9223372036854775808" << QValidator::Acceptable;
    // The magnitude of the smallest 64-bit value does not fit 64 signed bits:
    // every positive entry is short of it.
    QTest::newRow("bottom smallest, top negative: positive")
        << min << -1LL << 10 << "5" << QValidator::Intermediate;
    QTest::newRow("bottom smallest, top negative: largest")
        << min << -1LL << 10 << "9223372036854775807" << QValidator::Intermediate;
    QTest::newRow("bottom smallest, top negative: in range")
        << min << -1LL << 10 << "-5" << QValidator::Acceptable;
    QTest::newRow("bottom smallest, top negative: minus one")
        << min << -1LL << 10 << "-1" << QValidator::Acceptable;
    QTest::newRow("bottom smallest, top negative: zero")
        << min << -1LL << 10 << "0" << QValidator::Intermediate;
    QTest::newRow("only the smallest: the smallest")
        << min << min << 10 << "-9223372036854775808" << QValidator::Acceptable;
    QTest::newRow("only the smallest: minus one")
        << min << min << 10 << "-1" << QValidator::Intermediate;
    QTest::newRow("beyond 64 bits")
        << min << max << 10 << "9223372036854775808" << QValidator::Invalid;
}

void tst_Validators::int64()
{
    QFETCH(qlonglong, bottom);
    QFETCH(qlonglong, top);
    QFETCH(int, base);
    QFETCH(QString, input);
    QFETCH(QValidator::State, state);
    Int64Validator validator(bottom, top, nullptr);
    validator.setBase(base);
    int pos = 0;
    QCOMPARE(validator.validate(input, pos), state);
}

void tst_Validators::int64Signals()
{
    Int64Validator validator;
    QCOMPARE(validator.bottom(), std::numeric_limits<qlonglong>::min());
    QSignalSpy bottom(&validator, &Int64Validator::bottomChanged);
    QSignalSpy top(&validator, &Int64Validator::topChanged);
    validator.setRange(0, 10);
    validator.setRange(0, 20);
    validator.setTop(20);
    QCOMPARE(bottom.count(), 1);
    QCOMPARE(top.count(), 2);
    QCOMPARE(Int64Validator::staticMetaObject
                 .classInfo(Int64Validator::staticMetaObject.indexOfClassInfo("date"))
                 .value(),
             "03/28/2018");
}

void tst_Validators::ip4_data()
{
    QTest::addColumn<QString>("input");
    QTest::addColumn<QValidator::State>("state");
    QTest::newRow("empty") << "" << QValidator::Acceptable;
    QTest::newRow("complete") << "192.168.1.10" << QValidator::Acceptable;
    QTest::newRow("trailing point") << "192.168.1." << QValidator::Intermediate;
    QTest::newRow("two parts") << "192.168" << QValidator::Intermediate;
    QTest::newRow("empty middle") << "192..1.1" << QValidator::Intermediate;
    QTest::newRow("256") << "192.168.1.256" << QValidator::Invalid;
    QTest::newRow("letters") << "192.168.a.1" << QValidator::Invalid;
    QTest::newRow("five parts") << "1.2.3.4.5" << QValidator::Invalid;
    QTest::newRow("blanks around numbers") << "192. 168 .1.1" << QValidator::Acceptable;
    QTest::newRow("negative") << "192.-1.1.1" << QValidator::Invalid;
}

void tst_Validators::ip4()
{
    QFETCH(QString, input);
    QFETCH(QValidator::State, state);
    IP4Validator validator;
    QString text = input;
    int pos = 3;
    QCOMPARE(validator.validate(text, pos), state);
    QCOMPARE(text, input);
    QCOMPARE(pos, 3);
}

void tst_Validators::ip4Conversions_data()
{
    QTest::addColumn<QString>("text");
    QTest::addColumn<uint>("address");
    QTest::newRow("private") << "192.168.1.1" << 0xC0A80101u;
    QTest::newRow("zero") << "0.0.0.0" << 0u;
    QTest::newRow("broadcast") << "255.255.255.255" << 0xFFFFFFFFu;
    QTest::newRow("mask") << "255.255.255.0" << 0xFFFFFF00u;
}

void tst_Validators::ip4Conversions()
{
    QFETCH(QString, text);
    QFETCH(uint, address);
    QCOMPARE(IP4Validator::getIp(text), address);
    QCOMPARE(IP4Validator::getIpStr(address), text);
}

QTEST_APPLESS_MAIN(tst_Validators)
#include "tst_validators.moc"
