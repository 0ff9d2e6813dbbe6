#include "library/libraryrecords.h"
#include "library/pictureencoding.h"
#include "testenvironment.h"

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QTest>

namespace {

QImage gradient(const QSize &size)
{
    QImage image(size, QImage::Format_RGB32);
    for (int y = 0; y < size.height(); ++y) {
        for (int x = 0; x < size.width(); ++x)
            image.setPixel(x, y, qRgb(x * 255 / size.width(), y * 255 / size.height(), 90));
    }
    return image;
}

QByteArray decoded(const QString &text)
{
    return QByteArray::fromBase64(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
}

} // namespace

class tst_PictureEncoding : public QObject
{
    Q_OBJECT

private slots:
    void encode_data()
    {
        QTest::addColumn<QString>("fileName");
        QTest::addColumn<QByteArray>("content"); // a format to save a picture in, or the bytes
        QTest::addColumn<QSize>("source");
        QTest::addColumn<QByteArray>("format"); // empty: no picture
        QTest::addColumn<QSize>("encoded");
        QTest::newRow("wide png") << "wide.png" << QByteArray("PNG") << QSize(200, 100) << QByteArray("png") << QSize(50, 25);
        QTest::newRow("small picture grows") << "dot.png" << QByteArray("PNG") << QSize(10, 10) << QByteArray("png") << QSize(50, 50);
        QTest::newRow("upper-case JPG") << "PHOTO.JPG" << QByteArray("JPG") << QSize(100, 80) << QByteArray("jpeg") << QSize(50, 40);
        QTest::newRow("jpeg") << "photo.Jpeg" << QByteArray("JPG") << QSize(64, 64) << QByteArray("jpeg") << QSize(50, 50);
        QTest::newRow("jpeg content named png") << "photo.png" << QByteArray("JPG") << QSize(100, 100) << QByteArray("png") << QSize(50, 50);
        QTest::newRow("name ending jpg.png") << "a.jpg.png" << QByteArray("PNG") << QSize(60, 60) << QByteArray("png") << QSize(50, 50);
        QTest::newRow("garbage: absurd dimensions")
            << "huge.png" << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\x7f\xff\xff\xff\x7f\xff\xff\xff\x08\x02\0\0\0", 29)
            << QSize() << QByteArray() << QSize(0, 0);
    }

    void encode()
    {
        QFETCH(QString, fileName);
        QFETCH(QByteArray, content);
        QFETCH(QSize, source);
        QFETCH(QByteArray, format);
        QFETCH(QSize, encoded);
        TestEnvironment env;
        const QString path = env.root() + '/' + fileName;
        if (source.isValid())
            QVERIFY(gradient(source).save(path, content.constData()));
        else
            QVERIFY(env.writeFile(path, content));
        const QString text = EncodePicture(path);
        QCOMPARE(text.isEmpty(), format.isEmpty());
        QBuffer buffer;
        buffer.setData(decoded(text));
        QImageReader reader(&buffer);
        QCOMPARE(reader.format(), format);
        QCOMPARE(reader.read().size(), encoded);
    }

    // Quality 70 unless asked; a larger target keeps more.
    void jpegQuality()
    {
        TestEnvironment env;
        const QString path = env.root() + QStringLiteral("/p.jpg");
        QVERIFY(gradient(QSize(400, 400)).save(path, "JPG", 100));
        const QByteArray at70 = decoded(EncodePicture(path));
        QVERIFY(at70.size() < decoded(EncodePicture(path, QSize(50, 50), 100)).size());
        QCOMPARE(decoded(EncodePicture(path, QSize(50, 50), 70)), at70);
        QBuffer buffer;
        buffer.setData(decoded(EncodePicture(path, QSize(120, 80))));
        QCOMPARE(QImageReader(&buffer).read().size(), QSize(80, 80));
    }

    void materialPicture_data()
    {
        QTest::addColumn<QString>("base64");
        QTest::addColumn<QString>("iconPath");
        QTest::addColumn<QSize>("shown");

        QByteArray png;
        QBuffer buffer(&png);
        QVERIFY(buffer.open(QIODevice::WriteOnly) && gradient(QSize(2, 1)).save(&buffer, "PNG"));
        QTest::newRow("embedded picture wins") << QString::fromLatin1(png.toBase64()) << "/Res/Icon/blue.png" << QSize(2, 1);
        QTest::newRow("path below the resources") << QString() << "/Res/Icon/blue.png" << QSize(6, 6);
        QTest::newRow("garbage base64 falls back to the path") << QStringLiteral("!!not base64!!") << "Res/Icon/blue.png" << QSize(6, 6);
    }

    void materialPicture()
    {
        QFETCH(QString, base64);
        QFETCH(QString, iconPath);
        QFETCH(QSize, shown);
        TestEnvironment env;
        QDir().mkpath(env.resourceDir() + QStringLiteral("/Res/Icon"));
        QVERIFY(QImage(6, 6, QImage::Format_RGB32).save(env.resourceDir() + "/Res/Icon/blue.png"));

        CLibMaterial material;
        material.iconPath = iconPath;
        material.iconBase64 = base64;
        QCOMPARE(MaterialPicture(material).size(), shown);
    }
};

QTEST_GUILESS_MAIN(tst_PictureEncoding)
#include "tst_pictureencoding.moc"
