#include "support/validator.h"
#include "testenvironment.h"

#include <QFocusEvent>
#include <QLineEdit>
#include <QTest>
#include <QToolTip>

#include <limits>
#include <memory>

namespace {

struct Bounds
{
    int check = Validator::CHECK_DOUBLE_RANGE;
    double min = 0;
    double max = 0;
    int decimals = 0;
    int valueKind = 0;
    double reset = std::numeric_limits<double>::infinity();
};

std::unique_ptr<Validator> build(QLineEdit *edit, const Bounds &b)
{
    if (b.check == Validator::CHECK_TEXT_LENGTH)
        return std::make_unique<Validator>(edit, int(b.max), b.check);
    if (b.check == Validator::CHECK_INT_RANGE)
        return std::make_unique<Validator>(edit, int(b.min), int(b.max), b.valueKind, b.check);
    return std::make_unique<Validator>(edit, b.min, b.max, b.decimals, b.valueKind, b.check, b.reset);
}

void leave(QLineEdit *edit, QEvent::Type type = QEvent::FocusOut)
{
    QFocusEvent event(type, Qt::OtherFocusReason);
    QCoreApplication::sendEvent(edit, &event);
}

class DerivedLineEdit : public QLineEdit
{
    Q_OBJECT
};

constexpr int kInt = Validator::CHECK_INT_RANGE;
const Bounds kSpeed{Validator::CHECK_DOUBLE_RANGE, 0.0, 200.0, 2, Validator::VALUE_SPEED};
const Bounds kPower{Validator::CHECK_DOUBLE_RANGE, 0.1, 100.0, 1, Validator::VALUE_PLAIN};
const Bounds kLength{Validator::CHECK_DOUBLE_RANGE, 0.0, 20.0, 2, Validator::VALUE_LENGTH};
const Bounds kCount{kInt, 1, 100, 0, Validator::VALUE_PLAIN};
const Bounds kText{Validator::CHECK_TEXT_LENGTH, 0, 20, 0, Validator::VALUE_PLAIN};
const char *const kSpeedRange = "Input range 0 to 200 ,2 decimal places";
const char *const kCountRange = "Input range 1 to 100";

// One row of the table below: ruler unit code (-1: no cfg.ini), validator, input, what is left,
// message, and how the input is left (QEvent::None: it was typed key by key).
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

private slots:
    void correction_data()
    {
        QTest::addColumn<int>("unit");
        QTest::addColumn<Bounds>("bounds");
        QTest::addColumn<QString>("input");
        QTest::addColumn<QString>("after");
        QTest::addColumn<QString>("message");
        QTest::addColumn<int>("event");
        row("mm/min speed inside", 3, kSpeed, "150", "150");
        // The upper test uses the stored 200 mm/s, so the displayed maximum fails.
        row("mm/min speed at displayed maximum", 3, kSpeed, "12000", "0", "Input range 0 to 12000 ,2 decimal places");
        row("mm/s speed on pointer leaving", 1, kSpeed, "250", "0", kSpeedRange, QEvent::Leave);
        row("no cfg.ini means mm/s", -1, kSpeed, "201", "0", kSpeedRange);
        row("unknown unit shows mm/s", 9, kSpeed, "201", "0", kSpeedRange);
        row("inch/s speed below minimum", 0, kSpeed, "-1", "0", "Input range 0 to 7.87402 ,2 decimal places");
        row("inch/min speed below minimum", 2, kSpeed, "-0.5", "0", "Input range 0 to 472.441 ,2 decimal places");
        row("percent sign over range", 1, kPower, " 150% ", "0.1", "Input range 0.1 to 100 ,1 decimal places");
        row("reset value given", 1, {Validator::CHECK_DOUBLE_RANGE, 0.1, 100.0, 1, Validator::VALUE_PLAIN, 50.0}, "150", "50",
            "Input range 0.1 to 100 ,1 decimal places");
        row("inch length rounded to hundredths", 0, kLength, "-3", "0", "Input range 0 to 0.79 ,2 decimal places");
        row("unknown unit length as mm", 7, kLength, "-3", "0", "Input range 0 to 20 ,2 decimal places");
        row("garbage float left alone", 1, kSpeed, "abc", "abc");
        row("garbage nan reset", 1, kSpeed, "nan", "0", kSpeedRange);
        // Leaving keeps it; the range shown is the one the edit's own check gave.
        row("integer above maximum stays", 1, kCount, "500", "500", kCountRange);
        row("integer below minimum", 1, kCount, "0", "1", kCountRange, QEvent::Leave);
        row("integer garbage", 1, kCount, "12ab", "1", kCountRange);
        row("integer inch length", 0, {kInt, 0, 4000, 0, Validator::VALUE_LENGTH}, "-2", "0", "Input range 0 to 157");
        row("integer mm/min speed", 3, {kInt, 0, 200, 0, Validator::VALUE_SPEED}, "-5", "0", "Input range 0 to 12000");
        row("integer inch/min speed", 2, {kInt, 10, 200, 0, Validator::VALUE_SPEED}, "", "23", "Input range 23 to 472");
        row("integer inch/s speed", 0, {kInt, 0, 200, 0, Validator::VALUE_SPEED}, "-5", "0", "Input range 0 to 7");
        row("garbage huge mm/min saturates", 3, {kInt, 0, 2000000000, 0, Validator::VALUE_SPEED}, "-5", "0",
            "Input range 0 to 2147483647");
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
    }

    void correction()
    {
        QFETCH(int, unit);
        QFETCH(Bounds, bounds);
        QFETCH(QString, input);
        QFETCH(int, event);
        TestEnvironment env;
        if (unit >= 0)
            env.writeFile(QStringLiteral("cfg.ini"), QStringLiteral("[APP_CFG]\nKEY_RULER_UNIT=%1\n").arg(unit).toUtf8());
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

    // Only plain line edits are corrected.
    void onlyPlainEditsCorrected()
    {
        TestEnvironment env;
        DerivedLineEdit derived;
        auto validator = build(&derived, kCount);
        derived.setText(QStringLiteral("0"));
        leave(&derived);
        QCOMPARE(derived.text() + validator->LastMessage(), QStringLiteral("0"));
    }

    void tipShownThenHidden()
    {
        TestEnvironment env;
        QLineEdit edit;
        edit.move(40, 30);
        edit.show();
        QVERIFY(QTest::qWaitForWindowExposed(&edit));
        auto integer = build(&edit, kCount);
        integer->SetTipOffset(QPoint(5, 6));
        edit.setText(QStringLiteral("0"));
        leave(&edit);
        QCOMPARE(edit.text(), QStringLiteral("1"));
        QTRY_COMPARE(QToolTip::text(), QString(kCountRange));
        // A passing check takes the message down again.
        QString text = QStringLiteral("50");
        int pos = 2;
        QCOMPARE(integer->validate(text, pos), QValidator::Acceptable);
        QCOMPARE(integer->LastMessage(), QString());
    }
};

QTEST_MAIN(tst_Validator)
#include "tst_validator.moc"
