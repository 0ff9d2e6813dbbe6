#include "library/pictureencoding.h"
#include "testenvironment.h"

#include <QBuffer>
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
        QTest::newRow("tall png") << "tall.png" << QByteArray("PNG") << QSize(30, 120) << QByteArray("png") << QSize(12, 50);
        QTest::newRow("small picture grows") << "dot.png" << QByteArray("PNG") << QSize(10, 10) << QByteArray("png") << QSize(50, 50);
        QTest::newRow("jpg") << "photo.jpg" << QByteArray("JPG") << QSize(100, 100) << QByteArray("jpeg") << QSize(50, 50);
        QTest::newRow("upper-case JPG") << "PHOTO.JPG" << QByteArray("JPG") << QSize(100, 80) << QByteArray("jpeg") << QSize(50, 40);
        QTest::newRow("jpeg") << "photo.Jpeg" << QByteArray("JPG") << QSize(64, 64) << QByteArray("jpeg") << QSize(50, 50);
        QTest::newRow("jpeg content named png") << "photo.png" << QByteArray("JPG") << QSize(100, 100) << QByteArray("png") << QSize(50, 50);
        QTest::newRow("bmp becomes png") << "scan.bmp" << QByteArray("BMP") << QSize(50, 100) << QByteArray("png") << QSize(25, 50);
        QTest::newRow("name ending jpg.png") << "a.jpg.png" << QByteArray("PNG") << QSize(60, 60) << QByteArray("png") << QSize(50, 50);
        QTest::newRow("missing file") << "none.png" << QByteArray() << QSize() << QByteArray() << QSize(0, 0);
        QTest::newRow("garbage: text named png") << "text.png" << QByteArray("not a picture") << QSize() << QByteArray() << QSize(0, 0);
        QTest::newRow("garbage: empty jpg") << "empty.jpg" << QByteArray("") << QSize() << QByteArray() << QSize(0, 0);
        QTest::newRow("garbage: truncated png") << "cut.png" << QByteArray("\x89PNG\r\n\x1a\n\0\0\0\rIHDR\0\0\x10\0", 20)
                                                << QSize() << QByteArray() << QSize(0, 0);
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
        else if (!content.isNull())
            QVERIFY(env.writeFile(path, content));
        const QString text = EncodePicture(path);
        QCOMPARE(text.isEmpty(), format.isEmpty());
        QBuffer buffer;
        buffer.setData(decoded(text));
        QImageReader reader(&buffer);
        QCOMPARE(reader.format(), format);
        QCOMPARE(reader.read().size(), encoded);
        QCOMPARE(EncodePicture(env.root()), QString());
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
};

QTEST_GUILESS_MAIN(tst_PictureEncoding)
#include "tst_pictureencoding.moc"
