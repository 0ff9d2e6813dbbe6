#include "clayerair.h"

#include "combocell.h"

#include "ctranslator.h"

#include <QComboBox>
#include <QEvent>
#include <QSignalBlocker>

CLayerAir::CLayerAir(QWidget *parent)
    : QWidget(parent)
    , m_combo(ComboCell::Create(this, "comboBox_air"))
{
    buildList();
    connect(m_combo, &QComboBox::currentIndexChanged, this, &CLayerAir::currentIndexChanged);
}

// The combo is deleted after this part of the object: nothing it still
// says may reach it.
CLayerAir::~CLayerAir()
{
    m_combo->disconnect(this);
    m_combo->removeEventFilter(this);
}

void CLayerAir::buildList()
{
    m_combo->clear();
    const CTranslator *translator = CTranslator::GetInstance();
    m_combo->addItems({translator->GetWording(QStringLiteral("High")),
                       translator->GetWording(QStringLiteral("Low"))});
}

void CLayerAir::SetCurrentText(const QString &text)
{
    m_combo->setCurrentText(text);
}

QString CLayerAir::CurrentText() const
{
    return m_combo->currentText();
}

int CLayerAir::CurrentIndex() const
{
    return m_combo->currentIndex();
}

bool CLayerAir::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_combo && ComboCell::Filter(this, watched, event))
        return true;
    return QWidget::eventFilter(watched, event);
}

void CLayerAir::changeEvent(QEvent *event)
{
    if (event->type() == QEvent::LanguageChange) {
        const QSignalBlocker blocker(m_combo);
        const int index = m_combo->currentIndex();
        buildList();
        m_combo->setCurrentIndex(index);
    }
    QWidget::changeEvent(event);
}
