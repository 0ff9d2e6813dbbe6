#pragma once

#include <QList>
#include <QWidget>

class QButtonGroup;
class QLabel;
class QToolButton;

// A strip of colour swatches: the colours a shape can take, so the layers
// it lands on. Clicking one chooses it.
class CColorPalette : public QWidget
{
    Q_OBJECT

public:
    struct Entry
    {
        quint32 color = 0;
        // The standard layer number, or 0 for black and the special colours.
        int number = 0;
    };

    explicit CColorPalette(QWidget *parent = nullptr);

    void SetEntries(const QList<Entry> &entries);
    const QList<Entry> &Entries() const { return m_entries; }
    QToolButton *Swatch(quint32 color) const;
    quint32 CurrentColor() const { return m_current; }
    // Marks the colour as chosen without telling anyone; false if it has no swatch.
    bool SetCurrentColor(quint32 color);

signals:
    void SigColorChosen(quint32 color);

protected:
    void changeEvent(QEvent *event) override;

private:
    void retranslate();
    QString toolTip(const Entry &entry) const;

    QLabel *m_label;
    QButtonGroup *m_buttons;
    QList<Entry> m_entries;
    QList<QToolButton *> m_swatches;
    quint32 m_current = 0;
};
