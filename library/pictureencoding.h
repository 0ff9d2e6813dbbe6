#pragma once

#include <QSize>
#include <QString>

// A material's picture as the library keeps it: the image file scaled into
// the target size (aspect ratio kept, smooth), encoded as JPEG of the given
// quality when the file name ends in ".jpg" or ".jpeg" (any case), else as
// PNG, as base64 text. Empty when the file does not load as an image.
QString EncodePicture(const QString &path, const QSize &target = QSize(50, 50),
                      int quality = 70);

struct CLibMaterial;
class QImage;

// A material's picture for display: "IconBase64Data" decoded when it holds an
// image, else "IconPath" (absolute, or below the application resource
// directory as "/Res/Icon/..." paths are), else a null image.
QImage MaterialPicture(const CLibMaterial &material);
