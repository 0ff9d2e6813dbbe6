#include "library/libraryrecords.h"
#include "library/pictureencoding.h"
#include "testenvironment.h"

#include <QBuffer>
#include <QDir>
#include <QImage>
#include <QImageReader>
#include <QTest>

class tst_PictureEncoding : public QObject
{
    Q_OBJECT

private slots:
    void encode_data();
    void encode();
    void jpegQuality();
    void unreadable_data();
    void unreadable();
    void materialPicture_data();
    void materialPicture();
};

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

// A literal with its embedded zero bytes, without the terminating one.
template<size_t N>
QByteArray bytesOf(const char (&text)[N])
{
    return QByteArray(text, qsizetype(N - 1));
}

QByteArray decoded(const QString &text)
{
    return QByteArray::fromBase64(text.toLatin1(), QByteArray::AbortOnBase64DecodingErrors);
}

} // namespace

void tst_PictureEncoding::encode_data()
{
    QTest::addColumn<QString>("fileName");
    QTest::addColumn<QSize>("source");
    QTest::addColumn<QByteArray>("sourceFormat");
    QTest::addColumn<QByteArray>("format");
    QTest::addColumn<QSize>("encoded");

    QTest::newRow("wide png") << "wide.png" << QSize(200, 100) << QByteArray("PNG")
                              << QByteArray("png") << QSize(50, 25);
    QTest::newRow("tall png") << "tall.png" << QSize(30, 120) << QByteArray("PNG")
                              << QByteArray("png") << QSize(12, 50);
    QTest::newRow("small picture grows") << "dot.png" << QSize(10, 10) << QByteArray("PNG")
                                         << QByteArray("png") << QSize(50, 50);
    QTest::newRow("jpg") << "photo.jpg" << QSize(100, 100) << QByteArray("JPG")
                         << QByteArray("jpeg") << QSize(50, 50);
    QTest::newRow("upper-case JPG") << "PHOTO.JPG" << QSize(100, 80) << QByteArray("JPG")
                                    << QByteArray("jpeg") << QSize(50, 40);
    QTest::newRow("jpeg") << "photo.Jpeg" << QSize(64, 64) << QByteArray("JPG")
                          << QByteArray("jpeg") << QSize(50, 50);
    QTest::newRow("jpeg content named png") << "photo.png" << QSize(100, 100) << QByteArray("JPG")
                                            << QByteArray("png") << QSize(50, 50);
    QTest::newRow("bmp becomes png") << "scan.bmp" << QSize(50, 100) << QByteArray("BMP")
                                     << QByteArray("png") << QSize(25, 50);
    QTest::newRow("name ending jpg.png") << "a.jpg.png" << QSize(60, 60) << QByteArray("PNG")
                                         << QByteArray("png") << QSize(50, 50);
}

void tst_PictureEncoding::encode()
{
    QFETCH(QString, fileName);
    QFETCH(QSize, source);
    QFETCH(QByteArray, sourceFormat);
    QFETCH(QByteArray, format);
    QFETCH(QSize, encoded);
    TestEnvironment env;

    const QString path = env.root() + QLatin1Char('/') + fileName;
    QVERIFY(gradient(source).save(path, sourceFormat.constData()));
    const QString text = EncodePicture(path);
    QVERIFY(!text.isEmpty());
    const QByteArray bytes = decoded(text);
    QVERIFY(!bytes.isEmpty());

    QBuffer buffer;
    buffer.setData(bytes);
    QImageReader reader(&buffer);
    QCOMPARE(reader.format(), format);
    const QImage image = reader.read();
    QCOMPARE(image.size(), encoded);
}

void tst_PictureEncoding::jpegQuality()
{
    TestEnvironment env;
    const QString path = env.root() + QStringLiteral("/p.jpg");
    QVERIFY(gradient(QSize(400, 400)).save(path, "JPG", 100));
    const QByteArray at70 = decoded(EncodePicture(path));
    const QByteArray at100 = decoded(EncodePicture(path, QSize(50, 50), 100));
    QVERIFY2(at70.size() < at100.size(), "quality 70 is the default");
    QCOMPARE(decoded(EncodePicture(path, QSize(50, 50), 70)), at70);
    // A larger target keeps more.
    QBuffer buffer;
    buffer.setData(decoded(EncodePicture(path, QSize(120, 80))));
    QCOMPARE(QImageReader(&buffer).read().size(), QSize(80, 80));
}

void tst_PictureEncoding::unreadable_data()
{
    QTest::addColumn<QByteArray>("bytes");
    QTest::addColumn<QString>("fileName");

    QTest::newRow("missing file") << QByteArray("<none>") << "none.png";
    QTest::newRow("garbage: text named png") << QByteArray("not a picture") << "text.png";
    QTest::newRow("garbage: empty jpg") << QByteArray() << "empty.jpg";
    QTest::newRow("garbage: truncated png")
        << bytesOf("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\x10\0") << "cut.png";
    QTest::newRow("garbage: absurd dimensions")
        << bytesOf("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\x7f\xff\xff\xff\x7f\xff\xff\xff\x08\x02\0\0\0")
        << "huge.png";
}

void tst_PictureEncoding::unreadable()
{
    QFETCH(QByteArray, bytes);
    QFETCH(QString, fileName);
    TestEnvironment env;
    const QString path = env.root() + QLatin1Char('/') + fileName;
    if (bytes != "<none>")
        QVERIFY(env.writeFile(path, bytes));
    QCOMPARE(EncodePicture(path), QString());
    QCOMPARE(EncodePicture(env.root()), QString());
}

void tst_PictureEncoding::materialPicture_data()
{
    QTest::addColumn<QString>("base64");
    QTest::addColumn<QString>("iconPath");
    QTest::addColumn<QSize>("shown");

    const QString red = QString::fromLatin1(
        QByteArray::fromHex("89504e470d0a1a0a0000000d49484452000000020000000108020000007b40e8dd"
                            "0000000d49444154789c63f8cfc000440008fe01ffc69e79f70000000049454e44"
                            "ae426082")
            .toBase64());
    QTest::newRow("embedded picture wins") << red << "/Res/Icon/blue.png" << QSize(2, 1);
    QTest::newRow("path below the resources") << QString() << "/Res/Icon/blue.png" << QSize(6, 6);
    QTest::newRow("garbage base64 falls back to the path")
        << QStringLiteral("!!not base64!!") << "Res/Icon/blue.png" << QSize(6, 6);
    QTest::newRow("missing file") << QString() << "/Res/Icon/none.png" << QSize(0, 0);
    QTest::newRow("nothing") << QStringLiteral("bm90IGFuIGltYWdl") << QString() << QSize(0, 0);
}

void tst_PictureEncoding::materialPicture()
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

QTEST_GUILESS_MAIN(tst_PictureEncoding)
#include "tst_pictureencoding.moc"
