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

// The rows of the tables below build their validator from one of these.
enum EBUILD {
    BUILD_FLOAT = 0,
    BUILD_FLOAT_WITH_RESET = 1,
    BUILD_INT = 2,
};

struct Bounds
{
    double min = 0;
    double max = 0;
    int decimals = 0;
    int valueKind = 0;
    double reset = 0;
};

void writeUnit(const TestEnvironment &env, int unit)
{
    if (unit >= 0)
        env.writeFile(QStringLiteral("cfg.ini"),
                      QStringLiteral("[APP_CFG]\nKEY_RULER_UNIT=%1\n").arg(unit).toUtf8());
}

std::unique_ptr<Validator> build(QLineEdit *edit, int kind, const Bounds &b)
{
    switch (kind) {
    case BUILD_INT:
        return std::make_unique<Validator>(edit, int(b.min), int(b.max), b.valueKind,
                                           int(Validator::CHECK_INT_RANGE));
    case BUILD_FLOAT_WITH_RESET:
        return std::make_unique<Validator>(edit, b.min, b.max, b.decimals, b.valueKind,
                                           int(Validator::CHECK_DOUBLE_RANGE), b.reset);
    default:
        return std::make_unique<Validator>(edit, b.min, b.max, b.decimals, b.valueKind,
                                           int(Validator::CHECK_DOUBLE_RANGE));
    }
}

void leave(QLineEdit *edit, QEvent::Type type)
{
    if (type == QEvent::FocusOut) {
        QFocusEvent event(QEvent::FocusOut, Qt::OtherFocusReason);
        QCoreApplication::sendEvent(edit, &event);
    } else {
        QEvent event(type);
        QCoreApplication::sendEvent(edit, &event);
    }
}

class DerivedLineEdit : public QLineEdit
{
    Q_OBJECT
};

} // namespace

Q_DECLARE_METATYPE(Bounds)

class tst_Validator : public QObject
{
    Q_OBJECT

private slots:
    void correctionOnLeaving_data();
    void correctionOnLeaving();
    void typing_data();
    void typing();
    void textLengthLimit();
    void messagesAreTranslated();
    void withoutEditShowsNothing();
    void onlyPlainLineEditsAreCorrected();
    void tipShownThenHidden();
    void boundsInDisplayUnits_data();
    void boundsInDisplayUnits();
};

void tst_Validator::correctionOnLeaving_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("kind");
    QTest::addColumn<Bounds>("bounds");
    QTest::addColumn<QString>("text");
    QTest::addColumn<int>("event");
    QTest::addColumn<QString>("after");
    QTest::addColumn<QString>("message");

    const Bounds speed{0.0, 200.0, 2, Validator::VALUE_SPEED, 0};
    const Bounds power{0.1, 100.0, 1, Validator::VALUE_PLAIN, 0};
    const Bounds length{0.0, 20.0, 2, Validator::VALUE_LENGTH, 0};
    const Bounds count{1, 100, 0, Validator::VALUE_PLAIN, 0};
    const int out = QEvent::FocusOut;
    const int leaveEvent = QEvent::Leave;
    const QString none;

    QTest::newRow("mm/min speed inside") << 3 << int(BUILD_FLOAT) << speed << "150" << out
                                         << "150" << none;
    // The upper test uses the stored 200 mm/s, so the displayed maximum fails.
    QTest::newRow("mm/min speed at displayed maximum")
        << 3 << int(BUILD_FLOAT) << speed << "12000" << out << "0"
        << "Input range 0 to 12000 ,2 decimal places";
    QTest::newRow("mm/s speed above maximum") << 1 << int(BUILD_FLOAT) << speed << "250" << out
                                              << "0" << "Input range 0 to 200 ,2 decimal places";
    QTest::newRow("mm/s speed on pointer leaving") << 1 << int(BUILD_FLOAT) << speed << "250"
                                                   << leaveEvent << "0"
                                                   << "Input range 0 to 200 ,2 decimal places";
    QTest::newRow("no cfg.ini means mm/s") << -1 << int(BUILD_FLOAT) << speed << "201" << out
                                           << "0" << "Input range 0 to 200 ,2 decimal places";
    QTest::newRow("inch/s speed below minimum")
        << 0 << int(BUILD_FLOAT) << speed << "-1" << out << "0"
        << "Input range 0 to 7.87402 ,2 decimal places";
    QTest::newRow("inch/min speed below minimum")
        << 2 << int(BUILD_FLOAT) << speed << "-0.5" << out << "0"
        << "Input range 0 to 472.441 ,2 decimal places";
    QTest::newRow("percent sign ignored") << 1 << int(BUILD_FLOAT) << power << "50%" << out
                                          << "50%" << none;
    QTest::newRow("percent sign over range")
        << 1 << int(BUILD_FLOAT) << power << " 150% " << out << "0.1"
        << "Input range 0.1 to 100 ,1 decimal places";
    QTest::newRow("reset value given") << 1 << int(BUILD_FLOAT_WITH_RESET)
                                       << Bounds{0.1, 100.0, 1, Validator::VALUE_PLAIN, 50.0}
                                       << "150" << out << "50"
                                       << "Input range 0.1 to 100 ,1 decimal places";
    QTest::newRow("inch length rounded to hundredths")
        << 0 << int(BUILD_FLOAT) << length << "-3" << out << "0"
        << "Input range 0 to 0.79 ,2 decimal places";
    QTest::newRow("mm length inside") << 3 << int(BUILD_FLOAT) << length << "19.99" << out
                                      << "19.99" << none;
    QTest::newRow("garbage float left alone") << 1 << int(BUILD_FLOAT) << speed << "abc" << out
                                              << "abc" << none;
    QTest::newRow("garbage nan reset") << 1 << int(BUILD_FLOAT) << speed << "nan" << out << "0"
                                       << "Input range 0 to 200 ,2 decimal places";
    QTest::newRow("garbage inf reset") << 1 << int(BUILD_FLOAT) << speed << "inf" << out << "0"
                                       << "Input range 0 to 200 ,2 decimal places";
    QTest::newRow("integer empty") << 1 << int(BUILD_INT) << count << "" << out << "1"
                                   << "Input range 1 to 100";
    // Leaving keeps it; the range shown is the one the edit's own check gave.
    QTest::newRow("integer above maximum stays") << 1 << int(BUILD_INT) << count << "500" << out
                                                 << "500" << "Input range 1 to 100";
    QTest::newRow("integer below minimum") << 1 << int(BUILD_INT) << count << "0" << leaveEvent
                                           << "1" << "Input range 1 to 100";
    QTest::newRow("integer garbage") << 1 << int(BUILD_INT) << count << "12ab" << out << "1"
                                     << "Input range 1 to 100";
    QTest::newRow("integer inch length") << 0 << int(BUILD_INT)
                                         << Bounds{0, 4000, 0, Validator::VALUE_LENGTH, 0} << "-2"
                                         << out << "0" << "Input range 0 to 157";
    QTest::newRow("integer mm/min speed") << 3 << int(BUILD_INT)
                                          << Bounds{0, 200, 0, Validator::VALUE_SPEED, 0} << "-5"
                                          << out << "0" << "Input range 0 to 12000";
    QTest::newRow("integer inch/min speed") << 2 << int(BUILD_INT)
                                            << Bounds{10, 200, 0, Validator::VALUE_SPEED, 0}
                                            << "" << out << "23" << "Input range 23 to 472";
}

void tst_Validator::correctionOnLeaving()
{
    QFETCH(int, unit);
    QFETCH(int, kind);
    QFETCH(Bounds, bounds);
    QFETCH(QString, text);
    QFETCH(int, event);
    QFETCH(QString, after);
    QFETCH(QString, message);
    TestEnvironment env;
    writeUnit(env, unit);

    QLineEdit edit;
    auto validator = build(&edit, kind, bounds);
    edit.setValidator(validator.get());
    edit.setText(text);
    leave(&edit, QEvent::Type(event));

    QCOMPARE(edit.text(), after);
    QCOMPARE(validator->LastMessage(), message);
}

void tst_Validator::typing_data()
{
    QTest::addColumn<int>("unit");
    QTest::addColumn<int>("kind");
    QTest::addColumn<Bounds>("bounds");
    QTest::addColumn<QString>("keys");
    QTest::addColumn<QString>("shown");
    QTest::addColumn<QString>("message");

    const Bounds speed{0.0, 200.0, 2, Validator::VALUE_SPEED, 0};
    const Bounds count{1, 100, 0, Validator::VALUE_PLAIN, 0};
    const QString none;

    QTest::newRow("mm/min speed up to displayed maximum")
        << 3 << int(BUILD_FLOAT) << speed << "12000" << "12000" << none;
    QTest::newRow("mm/min speed beyond displayed maximum")
        << 3 << int(BUILD_FLOAT) << speed << "12001" << "12001"
        << "Input range 0 to 12000 ,2 decimal places";
    QTest::newRow("third decimal refused") << 1 << int(BUILD_FLOAT) << speed << "1.234" << "1.23"
                                           << "Input range 0 to 200 ,2 decimal places";
    QTest::newRow("trailing point allowed") << 1 << int(BUILD_FLOAT) << speed << "12." << "12."
                                            << none;
    QTest::newRow("lone minus allowed") << 1 << int(BUILD_FLOAT) << speed << "-" << "-" << none;
    QTest::newRow("letters refused") << 1 << int(BUILD_FLOAT) << speed << "1x2" << "12" << none;
    QTest::newRow("integer letters refused") << 1 << int(BUILD_INT) << count << "a7b" << "7"
                                             << none;
    QTest::newRow("integer above range kept with message")
        << 1 << int(BUILD_INT) << count << "500" << "500" << "Input range 1 to 100";
    QTest::newRow("integer back in range hides message")
        << 1 << int(BUILD_INT) << count << "500\b" << "50" << none;
}

void tst_Validator::typing()
{
    QFETCH(int, unit);
    QFETCH(int, kind);
    QFETCH(Bounds, bounds);
    QFETCH(QString, keys);
    QFETCH(QString, shown);
    QFETCH(QString, message);
    TestEnvironment env;
    writeUnit(env, unit);

    QLineEdit edit;
    auto validator = build(&edit, kind, bounds);
    edit.setValidator(validator.get());
    for (const QChar c : std::as_const(keys)) {
        if (c == QLatin1Char('\b'))
            QTest::keyClick(&edit, Qt::Key_Backspace);
        else
            QTest::keyClicks(&edit, QString(c));
    }

    QCOMPARE(edit.text(), shown);
    QCOMPARE(validator->LastMessage(), message);
}

void tst_Validator::textLengthLimit()
{
    TestEnvironment env;
    writeUnit(env, 3);
    QLineEdit edit;
    Validator validator(&edit, 20, int(Validator::CHECK_TEXT_LENGTH));
    edit.setValidator(&validator);
    QCOMPARE(validator.UnitCode(), 1);

    QTest::keyClicks(&edit, QStringLiteral("abcdefghijklmnopqrst"));
    QCOMPARE(edit.text().size(), 20);
    QCOMPARE(validator.LastMessage(), QString());

    QTest::keyClicks(&edit, QStringLiteral("u"));
    QCOMPARE(edit.text(), QStringLiteral("abcdefghijklmnopqrst"));
    QCOMPARE(validator.LastMessage(), QStringLiteral("Maximum text length exceeded: 20"));

    // Leaving a text field changes nothing.
    leave(&edit, QEvent::FocusOut);
    QCOMPARE(edit.text(), QStringLiteral("abcdefghijklmnopqrst"));
}

void tst_Validator::messagesAreTranslated()
{
    TestEnvironment env;
    LanguageGuard chinese(QStringLiteral("Chs"));
    QLineEdit edit;
    Validator integer(&edit, 1, 100, 0, int(Validator::CHECK_INT_RANGE));
    edit.setText(QString());
    leave(&edit, QEvent::FocusOut);
    QCOMPARE(integer.LastMessage(), QStringLiteral("输入范围 1 至 100"));

    QLineEdit floating;
    Validator speed(&floating, 0.0, 200.0, 2, 2, int(Validator::CHECK_DOUBLE_RANGE));
    floating.setText(QStringLiteral("300"));
    leave(&floating, QEvent::FocusOut);
    QCOMPARE(speed.LastMessage(), QStringLiteral("输入范围 0 至 200 ,2 位小数"));
}

void tst_Validator::withoutEditShowsNothing()
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
    leave(&edit, QEvent::FocusOut);
    QCOMPARE(edit.text(), QStringLiteral("0"));
}

void tst_Validator::onlyPlainLineEditsAreCorrected()
{
    TestEnvironment env;
    DerivedLineEdit edit;
    Validator integer(&edit, 1, 100, 0, int(Validator::CHECK_INT_RANGE));
    edit.setText(QStringLiteral("0"));
    leave(&edit, QEvent::FocusOut);
    QCOMPARE(edit.text(), QStringLiteral("0"));
    QCOMPARE(integer.LastMessage(), QString());
}

void tst_Validator::tipShownThenHidden()
{
    TestEnvironment env;
    QLineEdit edit;
    edit.move(40, 30);
    edit.show();
    QVERIFY(QTest::qWaitForWindowExposed(&edit));
    Validator integer(&edit, 1, 100, 0, int(Validator::CHECK_INT_RANGE));
    QCOMPARE(integer.SetTipOffset(QPoint(5, 6)), &integer);
    edit.setText(QStringLiteral("0"));
    leave(&edit, QEvent::FocusOut);
    QCOMPARE(edit.text(), QStringLiteral("1"));
    QCOMPARE(integer.LastMessage(), QStringLiteral("Input range 1 to 100"));
    QTRY_COMPARE(QToolTip::text(), QStringLiteral("Input range 1 to 100"));

    // A passing check takes the message down again.
    QString text = QStringLiteral("50");
    int pos = 2;
    QCOMPARE(integer.validate(text, pos), QValidator::Acceptable);
    QCOMPARE(integer.LastMessage(), QString());
}

void tst_Validator::boundsInDisplayUnits_data()
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
    QTest::newRow("garbage huge mm/min saturates") << 3 << 2 << 2000000000 << 2147483647
                                                   << 120000000000.0;
}

void tst_Validator::boundsInDisplayUnits()
{
    QFETCH(int, unit);
    QFETCH(int, valueKind);
    QFETCH(int, stored);
    QFETCH(int, intShown);
    QFETCH(double, floatShown);
    TestEnvironment env;
    writeUnit(env, unit);
    Validator integer(nullptr, 0, stored, valueKind, int(Validator::CHECK_INT_RANGE));
    Validator floating(nullptr, 0.0, double(stored), 2, valueKind,
                       int(Validator::CHECK_DOUBLE_RANGE));
    QCOMPARE(integer.UnitCode(), unit);
    QCOMPARE(integer.ConvertInt(stored), intShown);
    QCOMPARE(floating.ConvertDouble(stored), floatShown);
}

QTEST_MAIN(tst_Validator)
#include "tst_validator.moc"
