#include "panelfixtures.h"
#include "support/validator.h"
#include "testenvironment.h"

#include <QFocusEvent>
#include <QLineEdit>
#include <QTest>
#include <QToolTip>

#include <memory>

using namespace paneltest;

namespace {

enum EBUILD { BUILD_FLOAT, BUILD_FLOAT_WITH_RESET, BUILD_INT, BUILD_TEXT };

struct Bounds
{
    int build = BUILD_FLOAT;
    double min = 0;
    double max = 0;
    int decimals = 0;
    int valueKind = 0;
    double reset = 0;
};

void writeUnit(const TestEnvironment &env, int unit)
{
    if (unit >= 0)
        env.writeFile(QStringLiteral("cfg.ini"), QStringLiteral("[APP_CFG]\nKEY_RULER_UNIT=%1\n").arg(unit).toUtf8());
}

std::unique_ptr<Validator> build(QLineEdit *edit, const Bounds &b)
{
    if (b.build == BUILD_TEXT)
        return std::make_unique<Validator>(edit, int(b.max), int(Validator::CHECK_TEXT_LENGTH));
    if (b.build == BUILD_INT)
        return std::make_unique<Validator>(edit, int(b.min), int(b.max), b.valueKind, int(Validator::CHECK_INT_RANGE));
    if (b.build == BUILD_FLOAT_WITH_RESET)
        return std::make_unique<Validator>(edit, b.min, b.max, b.decimals, b.valueKind,
                                           int(Validator::CHECK_DOUBLE_RANGE), b.reset);
    return std::make_unique<Validator>(edit, b.min, b.max, b.decimals, b.valueKind, int(Validator::CHECK_DOUBLE_RANGE));
}

void leave(QLineEdit *edit, QEvent::Type type = QEvent::FocusOut)
{
    QFocusEvent focusOut(QEvent::FocusOut, Qt::OtherFocusReason);
    QEvent other(type);
    QCoreApplication::sendEvent(edit, type == QEvent::FocusOut ? &focusOut : &other);
}

class DerivedLineEdit : public QLineEdit
{
    Q_OBJECT
};

const Bounds kSpeed{BUILD_FLOAT, 0.0, 200.0, 2, Validator::VALUE_SPEED};
const Bounds kPower{BUILD_FLOAT, 0.1, 100.0, 1, Validator::VALUE_PLAIN};
const Bounds kLength{BUILD_FLOAT, 0.0, 20.0, 2, Validator::VALUE_LENGTH};
const Bounds kCount{BUILD_INT, 1, 100, 0, Validator::VALUE_PLAIN};
const Bounds kText{BUILD_TEXT, 0, 20, 0, Validator::VALUE_PLAIN};
const char *const kSpeedRange = "Input range 0 to 200 ,2 decimal places";
const char *const kCountRange = "Input range 1 to 100";

// One row of the table below: unit code (-1: no cfg.ini), validator, input, what is left, message,
// and how the input is left (QEvent::None: it was typed key by key).
void row(const char *name, int unit, const Bounds &bounds, const char *input, const char *after,
         const char *message = "", QEvent::Type event = QEvent::FocusOut)
{
    QTest::newRow(name) << unit << bounds << QString::fromUtf8(input) << QString::fromUtf8(after)
                        << QString::fromUtf8(message) << int(event);
}

} // namespace

Q_DECLARE_METATYPE(Bounds)

class tst_Validator : public QObject
{
    Q_OBJECT

    static void columns()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<Bounds>("bounds");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("event");
    }

private slots:
    void correction_data()
    {
        columns();
        row("mm/min speed inside", 3, kSpeed, "150", "150");
        // The upper test uses the stored 200 mm/s, so the displayed maximum fails.
        row("mm/min speed at displayed maximum", 3, kSpeed, "12000", "0", "Input range 0 to 12000 ,2 decimal places");
        row("mm/s speed above maximum", 1, kSpeed, "250", "0", kSpeedRange);
        row("mm/s speed on pointer leaving", 1, kSpeed, "250", "0", kSpeedRange, QEvent::Leave);
        row("no cfg.ini means mm/s", -1, kSpeed, "201", "0", kSpeedRange);
        row("inch/s speed below minimum", 0, kSpeed, "-1", "0", "Input range 0 to 7.87402 ,2 decimal places");
        row("inch/min speed below minimum", 2, kSpeed, "-0.5", "0", "Input range 0 to 472.441 ,2 decimal places");
        row("percent sign ignored", 1, kPower, "50%", "50%");
        row("percent sign over range", 1, kPower, " 150% ", "0.1", "Input range 0.1 to 100 ,1 decimal places");
        row("reset value given", 1, {BUILD_FLOAT_WITH_RESET, 0.1, 100.0, 1, Validator::VALUE_PLAIN, 50.0}, "150", "50",
            "Input range 0.1 to 100 ,1 decimal places");
        row("inch length rounded to hundredths", 0, kLength, "-3", "0", "Input range 0 to 0.79 ,2 decimal places");
        row("mm length inside", 3, kLength, "19.99", "19.99");
        row("garbage float left alone", 1, kSpeed, "abc", "abc");
        row("garbage nan reset", 1, kSpeed, "nan", "0", kSpeedRange);
        row("garbage inf reset", 1, kSpeed, "inf", "0", kSpeedRange);
        row("integer empty", 1, kCount, "", "1", kCountRange);
        // Leaving keeps it; the range shown is the one the edit's own check gave.
        row("integer above maximum stays", 1, kCount, "500", "500", kCountRange);
        row("integer below minimum", 1, kCount, "0", "1", kCountRange, QEvent::Leave);
        row("integer garbage", 1, kCount, "12ab", "1", kCountRange);
        row("integer inch length", 0, {BUILD_INT, 0, 4000, 0, Validator::VALUE_LENGTH}, "-2", "0", "Input range 0 to 157");
        row("integer mm/min speed", 3, {BUILD_INT, 0, 200, 0, Validator::VALUE_SPEED}, "-5", "0", "Input range 0 to 12000");
        row("integer inch/min speed", 2, {BUILD_INT, 10, 200, 0, Validator::VALUE_SPEED}, "", "23", "Input range 23 to 472");
        // Typed key by key.
        row("mm/min speed up to displayed maximum", 3, kSpeed, "12000", "12000", "", QEvent::None);
        row("mm/min speed beyond displayed maximum", 3, kSpeed, "12001", "12001", "Input range 0 to 12000 ,2 decimal places",
            QEvent::None);
        row("third decimal refused", 1, kSpeed, "1.234", "1.23", kSpeedRange, QEvent::None);
        row("trailing point allowed", 1, kSpeed, "12.", "12.", "", QEvent::None);
        row("lone minus allowed", 1, kSpeed, "-", "-", "", QEvent::None);
        row("letters refused", 1, kSpeed, "1x2", "12", "", QEvent::None);
        row("integer letters refused", 1, kCount, "a7b", "7", "", QEvent::None);
        row("integer above range kept with message", 1, kCount, "500", "500", kCountRange, QEvent::None);
        row("integer back in range hides message", 1, kCount, "500\b", "50", "", QEvent::None);
        row("text up to its limit", 3, kText, "abcdefghijklmnopqrst", "abcdefghijklmnopqrst", "", QEvent::None);
        row("text beyond its limit", 3, kText, "abcdefghijklmnopqrstu", "abcdefghijklmnopqrst",
            "Maximum text length exceeded: 20", QEvent::None);
        row("text left alone on leaving", 1, kText, "abc", "abc");
    }

    void correction()
    {
        QFETCH(int, unit);
        QFETCH(Bounds, bounds);
        QFETCH(QString, input);
        QFETCH(int, event);
        TestEnvironment env;
        writeUnit(env, unit);
        QLineEdit edit;
        auto validator = build(&edit, bounds);
        edit.setValidator(validator.get());
        if (event == QEvent::None) {
            for (const QChar c : std::as_const(input)) {
                if (c == QLatin1Char('\b'))
                    QTest::keyClick(&edit, Qt::Key_Backspace);
                else
                    QTest::keyClicks(&edit, QString(c));
            }
        } else {
            edit.setText(input);
            leave(&edit, QEvent::Type(event));
        }
        QTEST(edit.text(), "after");
        QTEST(validator->LastMessage(), "message");
    }

    void messagesAreTranslated()
    {
        TestEnvironment env;
        LanguageGuard chinese(QStringLiteral("Chs"));
        QLineEdit edit;
        Validator integer(&edit, 1, 100, 0, int(Validator::CHECK_INT_RANGE));
        leave(&edit);
        QCOMPARE(integer.LastMessage(), QStringLiteral("输入范围 1 至 100"));
        QLineEdit floating;
        Validator speed(&floating, 0.0, 200.0, 2, 2, int(Validator::CHECK_DOUBLE_RANGE));
        floating.setText(QStringLiteral("300"));
        leave(&floating);
        QCOMPARE(speed.LastMessage(), QStringLiteral("输入范围 0 至 200 ,2 位小数"));
    }

    void noPlainEditNoCorrection()
    {
        TestEnvironment env;
        Validator integer(nullptr, 1, 100, 0, int(Validator::CHECK_INT_RANGE));
        QString text = QStringLiteral("500");
        int pos = 3;
        QCOMPARE(integer.validate(text, pos), QValidator::Intermediate);
        QCOMPARE(integer.LastMessage(), QString());
        Validator limit(nullptr, 2, int(Validator::CHECK_TEXT_LENGTH));
        text = QStringLiteral("abc");
        QCOMPARE(limit.validate(text, pos), QValidator::Invalid);
        QCOMPARE(limit.LastMessage(), QString());

        // It filters no edit either, even when installed by hand.
        QLineEdit edit;
        edit.installEventFilter(&integer);
        edit.setText(QStringLiteral("0"));
        leave(&edit);
        QCOMPARE(edit.text(), QStringLiteral("0"));

        // Only plain line edits are corrected.
        DerivedLineEdit derived;
        Validator ofDerived(&derived, 1, 100, 0, int(Validator::CHECK_INT_RANGE));
        derived.setText(QStringLiteral("0"));
        leave(&derived);
        QCOMPARE(derived.text(), QStringLiteral("0"));
        QCOMPARE(ofDerived.LastMessage(), QString());
    }

    void tipShownThenHidden()
    {
        TestEnvironment env;
        QLineEdit edit;
        edit.move(40, 30);
        edit.show();
        QVERIFY(QTest::qWaitForWindowExposed(&edit));
        Validator integer(&edit, 1, 100, 0, int(Validator::CHECK_INT_RANGE));
        QCOMPARE(integer.SetTipOffset(QPoint(5, 6)), &integer);
        edit.setText(QStringLiteral("0"));
        leave(&edit);
        QCOMPARE(edit.text(), QStringLiteral("1"));
        QCOMPARE(integer.LastMessage(), QString(kCountRange));
        QTRY_COMPARE(QToolTip::text(), QString(kCountRange));
        // A passing check takes the message down again.
        QString text = QStringLiteral("50");
        int pos = 2;
        QCOMPARE(integer.validate(text, pos), QValidator::Acceptable);
        QCOMPARE(integer.LastMessage(), QString());
    }

    void boundsInDisplayUnits_data()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<int>("valueKind");
        QTest::addColumn<int>("stored");
        QTest::addColumn<int>("intShown");
        QTest::addColumn<double>("floatShown");
        QTest::newRow("plain mm/min") << 3 << 0 << 200 << 200 << 200.0;
        QTest::newRow("length mm") << 1 << 1 << 4000 << 4000 << 4000.0;
        QTest::newRow("length inch/s") << 0 << 1 << 4000 << 157 << 157.48;
        QTest::newRow("length inch/min") << 2 << 1 << 20 << 0 << 0.79;
        QTest::newRow("length unknown unit as mm") << 7 << 1 << 20 << 20 << 20.0;
        QTest::newRow("speed inch/s") << 0 << 2 << 200 << 7 << 200 / 25.4;
        QTest::newRow("speed inch/min") << 2 << 2 << 200 << 472 << 200 / 25.4 * 60.0;
        QTest::newRow("speed mm/min") << 3 << 2 << 200 << 12000 << 12000.0;
        QTest::newRow("speed unknown unit unchanged") << 9 << 2 << 200 << 200 << 200.0;
        QTest::newRow("garbage huge mm/min saturates") << 3 << 2 << 2000000000 << 2147483647 << 120000000000.0;
    }

    void boundsInDisplayUnits()
    {
        QFETCH(int, unit);
        QFETCH(int, valueKind);
        QFETCH(int, stored);
        TestEnvironment env;
        writeUnit(env, unit);
        Validator integer(nullptr, 0, stored, valueKind, int(Validator::CHECK_INT_RANGE));
        Validator floating(nullptr, 0.0, double(stored), 2, valueKind, int(Validator::CHECK_DOUBLE_RANGE));
        QCOMPARE(integer.UnitCode(), unit);
        QTEST(integer.ConvertInt(stored), "intShown");
        QTEST(floating.ConvertDouble(stored), "floatShown");
    }
};

QTEST_MAIN(tst_Validator)
#include "tst_validator.moc"
