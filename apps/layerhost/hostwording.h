#pragma once

#include "ctranslator.h"

#include <QString>

// Every visible text of the host goes through the host's translator, keyed
// by its English wording.
inline QString Wording(const char *english)
{
    return CTranslator::GetInstance()->GetWording(QString::fromUtf8(english));
}
