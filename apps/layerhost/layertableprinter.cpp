#include "layertableprinter.h"

#include "ilayermgr.h"

#include <QTextStream>

namespace {

const char *modeName(qint32 workType)
{
    static const char *const names[] = {"Cutting", "Scoring", "Shallow Engrave", "Deep Engrave",
                                        "Mark"};
    return workType >= 0 && workType < 5 ? names[workType] : "Unknow";
}

} // namespace

void PrintLayerTable(QTextStream &out, ILayerMgr *manager)
{
    out << QStringLiteral("%1  %2  %3 %4 %5 %6 %7 %8\n")
               .arg(QStringLiteral("No."), -4)
               .arg(QStringLiteral("Colour"), -7)
               .arg(QStringLiteral("Mode"), -16)
               .arg(QStringLiteral("Speed"), 7)
               .arg(QStringLiteral("Power"), 6)
               .arg(QStringLiteral("Laser"), -7)
               .arg(QStringLiteral("Air"), -4)
               .arg(QStringLiteral("Output"));
    const quint64 count = manager->GetLayerCount();
    for (quint32 i = 0; i < count; ++i) {
        const CLayerParam *layer = manager->GetLayerAt(i);
        const bool line = layer->IsLineProcess();
        const LaserParam &l1 = line ? layer->CUT.LASER1 : layer->SWEEP.LASER1;
        const LaserParam &l2 = line ? layer->CUT.LASER2 : layer->SWEEP.LASER2;
        const bool mark = layer->WORK_TYPE == WORK_MARK;
        const quint32 number = manager->GetLayerNumber(layer->COLOR);
        const double speed = line ? layer->CUT.CUT_SPEED : layer->SWEEP.SWEEP_SPEED;
        out << QStringLiteral("%1  #%2  %3 %4 %5 %6 %7 %8\n")
                   .arg(number ? QString::number(number) : QStringLiteral("-"), -4)
                   .arg(layer->COLOR, 6, 16, QLatin1Char('0'))
                   .arg(QLatin1String(modeName(layer->WORK_TYPE)), -16)
                   .arg(mark ? QStringLiteral("/") : QString::number(speed, 'f', 1), 7)
                   .arg(mark ? QStringLiteral("/") : QString::number((l1.ENABLE ? l1 : l2).POWER_MAX, 'g', 6), 6)
                   .arg(l1.ENABLE || mark ? QStringLiteral("Laser1") : QStringLiteral("Laser2"), -7)
                   .arg(layer->BLOW ? QStringLiteral("High") : QStringLiteral("Low"), -4)
                   .arg(layer->OUTPUT ? QStringLiteral("on") : QStringLiteral("off"));
    }
}
