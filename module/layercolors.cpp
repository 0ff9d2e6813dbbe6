#include "layercolors.h"

namespace {
// Each alternate is its standard colour one step up per channel; layer 5's
// green steps by two.
constexpr quint32 kColors[kStandardLayerCount][2] = {
    {0x0B00FF, 0x0C01FF}, {0x0BABFF, 0x0CACFF}, {0xF48244, 0xF58345}, {0x8F86DE, 0x9087DF},
    {0x00CAFC, 0x01CCFD}, {0x98CEF4, 0x99CFF5}, {0x83FAFE, 0x84FBFF}, {0x83F7CC, 0x84F8CD},
    {0xFFFDB4, 0xFFFEB5}, {0xF3D293, 0xF4D394}, {0xF7837F, 0xF88480}, {0xF886B8, 0xF987B9},
    {0x2431BD, 0x2532BE}, {0x429DE9, 0x439EEA}, {0x6BBFFF, 0x6CC0FF}, {0x1DF8FF, 0x1EF9FF},
    {0x4DEFA2, 0x4EF0A3}, {0xFDF975, 0xFEFA76}, {0xE59540, 0xE69641}, {0xF5400F, 0xF64110},
    {0xF52877, 0xF62978}, {0x1D1D95, 0x1E1E96}, {0x2262A1, 0x2363A2}, {0x3FA4CB, 0x40A5CC},
    {0x3DBFBF, 0x3EC0C0}, {0x37B381, 0x38B482}, {0xBDBC54, 0xBEBD55}, {0xAF7C34, 0xB07D35},
    {0xB71400, 0xB81501}, {0xB71B59, 0xB81C5A}, {0x131064, 0x141165}, {0x204E74, 0x214F75},
    {0x317D9B, 0x327E9C}, {0x267F81, 0x278082}, {0x227756, 0x237857},
};
} // namespace

quint32 StandardLayerColor(quint32 number, bool alternate)
{
    if (number < 1 || number > kStandardLayerCount)
        return alternate ? 0x010101 : 0;
    return kColors[number - 1][alternate ? 1 : 0];
}

quint32 StandardLayerNumber(quint32 color)
{
    for (quint32 i = 0; i < kStandardLayerCount; ++i) {
        if (kColors[i][0] == color || kColors[i][1] == color)
            return i + 1;
    }
    return 0;
}

bool IsReservedColor(quint32 color)
{
    return color == kReservedColorA || color == kReservedColorB;
}
