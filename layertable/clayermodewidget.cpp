#include "clayermodewidget.h"

#include "combocell.h"
#include "module/clayerparam.h"

#include "ctranslator.h"

#include <QComboBox>
#include <QEvent>
#include <QSignalBlocker>

namespace {
const char *const kWorkTypeNames[] = {"Cutting", "Scoring", "Shallow Engrave", "Deep Engrave",
                                      "Mark"};
}

CLayerModeWidget::CLayerModeWidget(QWidget *parent)
    : QWidget(parent)
    , m_combo(ComboCell::Create(this, "comboBox_mode"))
{
    BuildList(false);
    connect(m_combo, &QComboBox::currentIndexChanged, this, &CLayerModeWidget::currentIndexChanged);
}

QString CLayerModeWidget::WorkTypeName(int workType)
{
    if (workType >= WORK_CUTTING && workType <= WORK_MARK)
        return QString::fromLatin1(kWorkTypeNames[workType]);
    return QStringLiteral("Unknow");
}

// The combo is deleted after this part of the object: nothing it still
// says may reach it.
CLayerModeWidget::~CLayerModeWidget()
{
    m_combo->disconnect(this);
    m_combo->removeEventFilter(this);
}

void CLayerModeWidget::BuildList(bool fillOnly)
{
    m_combo->clear();
    m_fillOnly = fillOnly;
    const int first = fillOnly ? WORK_SHALLOW_ENGRAVE : WORK_CUTTING;
    const int last = fillOnly ? WORK_DEEP_ENGRAVE : WORK_MARK;
    QStringList items;
    for (int type = first; type <= last; ++type)
        items << CTranslator::GetInstance()->GetWording(WorkTypeName(type));
    m_combo->addItems(items);
}

int CLayerModeWidget::WorkTypeAt(int index) const
{
    if (index < 0)
        return index;
    return m_fillOnly ? WORK_SHALLOW_ENGRAVE + index : index;
}

void CLayerModeWidget::SetCurrentText(const QString &text)
{
    // A mode the list does not offer ("Unknow", or cutting on a fill-only
    // layer) is shown as it is, with no item chosen.
    const int index = m_combo->findText(text);
    if (index < 0)
        m_combo->setPlaceholderText(text);
    m_combo->setCurrentIndex(index);
}

QString CLayerModeWidget::CurrentText() const
{
    return m_combo->currentIndex() < 0 ? m_combo->placeholderText() : m_combo->currentText();
}

int CLayerModeWidget::CurrentIndex() const
{
    return m_combo->currentIndex();
}

int CLayerModeWidget::Count() const
{
    return m_combo->count();
}

bool CLayerModeWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_combo && ComboCell::Filter(this, watched, event))
        return true;
    return QWidget::eventFilter(watched, event);
}

void CLayerModeWidget::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        // Same choice, new words: nobody is told the mode changed.
        const QSignalBlocker blocker(m_combo);
        const int index = m_combo->currentIndex();
        BuildList(m_fillOnly);
        m_combo->setCurrentIndex(index);
    }
    QWidget::changeEvent(event);
}
