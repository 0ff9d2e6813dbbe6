#include "ccolorpalette.h"

#include "hostwording.h"
#include "ilog.h"

#include <QButtonGroup>
#include <QEvent>
#include <QHBoxLayout>
#include <QLabel>
#include <QPainter>
#include <QToolButton>

namespace {

QString hexName(quint32 color)
{
    return QStringLiteral("%1").arg(color, 6, 16, QLatin1Char('0')).toUpper();
}

QIcon swatchIcon(quint32 color)
{
    QPixmap pixmap(16, 16);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.fillRect(QRect(0, 0, 16, 16), QColor::fromRgb(color));
    painter.setPen(QColor(0, 0, 0, 90));
    painter.drawRect(QRect(0, 0, 15, 15));
    return QIcon(pixmap);
}

} // namespace

CColorPalette::CColorPalette(QWidget *parent)
    : QWidget(parent)
    , m_label(new QLabel(this))
    , m_buttons(new QButtonGroup(this))
{
    setObjectName(QStringLiteral("widget_palette"));
    auto *layout = new QHBoxLayout(this);
    layout->setContentsMargins(6, 2, 6, 2);
    layout->setSpacing(1);
    layout->addWidget(m_label);
    layout->addSpacing(6);
    layout->addStretch(1);
    m_buttons->setExclusive(true);
    connect(m_buttons, &QButtonGroup::idClicked, this, [this](int id) {
        const Entry &entry = m_entries.at(id);
        m_current = entry.color;
        ILog_WriteLogF(0, "%s was clicked.", qPrintable(m_swatches.at(id)->objectName()));
        emit SigColorChosen(entry.color);
    });
    retranslate();
}

void CColorPalette::SetEntries(const QList<Entry> &entries)
{
    for (QToolButton *swatch : std::as_const(m_swatches)) {
        m_buttons->removeButton(swatch);
        delete swatch;
    }
    m_swatches.clear();
    m_entries = entries;
    auto *box = static_cast<QHBoxLayout *>(layout());
    for (int i = 0; i < m_entries.size(); ++i) {
        const Entry &entry = m_entries.at(i);
        auto *swatch = new QToolButton(this);
        swatch->setObjectName(QStringLiteral("toolButton_color_") + hexName(entry.color));
        swatch->setCheckable(true);
        swatch->setAutoRaise(true);
        swatch->setIcon(swatchIcon(entry.color));
        swatch->setIconSize(QSize(16, 16));
        swatch->setFixedSize(24, 24);
        m_buttons->addButton(swatch, i);
        // Before the stretch, which stays last.
        box->insertWidget(box->count() - 1, swatch);
        m_swatches.append(swatch);
    }
    retranslate();
    if (!SetCurrentColor(m_current) && !m_entries.isEmpty())
        SetCurrentColor(m_entries.first().color);
}

QToolButton *CColorPalette::Swatch(quint32 color) const
{
    for (int i = 0; i < m_entries.size(); ++i) {
        if (m_entries.at(i).color == color)
            return m_swatches.at(i);
    }
    return nullptr;
}

bool CColorPalette::SetCurrentColor(quint32 color)
{
    QToolButton *swatch = Swatch(color);
    if (!swatch)
        return false;
    swatch->setChecked(true);
    m_current = color;
    return true;
}

void CColorPalette::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange)
        retranslate();
    QWidget::changeEvent(event);
}

QString CColorPalette::toolTip(const Entry &entry) const
{
    QString name;
    if (entry.number > 0)
        name = Wording("Layer %1").arg(entry.number);
    else if (entry.color == 0)
        name = Wording("Black");
    else
        name = Wording("Special layer");
    return name + QStringLiteral(" (#") + hexName(entry.color) + QLatin1Char(')');
}

void CColorPalette::retranslate()
{
    m_label->setText(Wording("Colour:"));
    for (int i = 0; i < m_entries.size(); ++i)
        m_swatches.at(i)->setToolTip(toolTip(m_entries.at(i)));
}
