#pragma once

#include <QDoubleValidator>
#include <QPoint>
#include <QPointer>
#include <QString>

#include <limits>

class QLineEdit;

// Guards one numeric (or length-limited) line edit: refuses text while the
// user types, writes a safe value back when the pointer leaves the field or
// it loses focus, and explains the allowed range in a tool tip. Bounds are
// given in stored units (mm, mm/s) and shown in the unit the host's ruler
// uses, read from cfg.ini once, when the validator is built.
class Validator : public QDoubleValidator
{
    Q_OBJECT

public:
    enum ECHECK_KIND {
        CHECK_TEXT_LENGTH = 0,
        CHECK_INT_RANGE = 1,
        CHECK_DOUBLE_RANGE = 2,
    };
    enum EVALUE_KIND {
        VALUE_PLAIN = 0,
        VALUE_LENGTH = 1,
        VALUE_SPEED = 2,
    };

    // Text length limit; unit code 1, cfg.ini is not read.
    Validator(QLineEdit *edit, int maxLength, int checkKind);
    // Integer range.
    Validator(QLineEdit *edit, int min, int max, int valueKind, int checkKind);
    // Floating range; an infinite reset value means the minimum.
    Validator(QLineEdit *edit, double min, double max, int decimals, int valueKind, int checkKind,
              double resetValue = std::numeric_limits<double>::infinity());
    ~Validator() override;

    Validator *SetTipOffset(const QPoint &offset);

    bool eventFilter(QObject *object, QEvent *event) override;
    State validate(QString &input, int &pos) const override;

    // The message on display; empty once a later check passed or when the
    // validator has no edit to show it at.
    QString LastMessage() const { return m_lastMessage; }
    int UnitCode() const { return m_unitCode; }
    int CheckKind() const { return m_checkKind; }

    // Bounds as the user sees them.
    int ConvertInt(int storedValue) const;
    double ConvertDouble(double storedValue) const;

private:
    void readUnitCode();
    void correctOnLeave(QLineEdit *edit) const;
    State validateInt(const QString &input) const;
    State validateDouble(const QString &input) const;
    QString rangeMessage() const;
    void showMessage(const QString &text) const;
    void hideMessage() const;
    void passed(const QString &input) const;

    QPointer<QLineEdit> m_edit;
    int m_maxLength = 0;
    int m_checkKind = 0;
    int m_intMin = 0;
    int m_intMax = 0;
    int m_decimals = 0;
    double m_min = 0.0;
    double m_max = 0.0;
    double m_resetValue = 0.0;
    QPoint m_tipOffset;
    int m_valueKind = 0;
    int m_unitCode = 0;
    mutable QString m_lastMessage;
    // The text a correction wrote: the edit re-checks it right away (while
    // it loses focus), which must not take the correction's message down.
    mutable QString m_correctedText;
};
