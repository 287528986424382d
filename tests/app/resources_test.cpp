#include "tests/app/support/windowtest.h"

#include <QDirIterator>
#include <QFile>
#include <QImage>
#include <QImageReader>
#include <QResource>

int qInitResources_res();
int qCleanupResources_res();

class ResourcesTest : public QObject {
    Q_OBJECT

private slots:
    void CollectionHoldsElevenFiles();
    void IconsAre48By48With32Bits_data();
    void IconsAre48By48With32Bits();
    void ExactlyThreeIconsAreStoredCompressed();
    void BackgroundsHaveTheirSizeAndPixelFormat();
    void BackgroundLeavesAHeaderForTheName();
    void OppositeEdgesOfTheBackgroundsMeet();
    void CollectionIsThereFromTheStartAndCanBeReleased();
};

namespace {

const QStringList kIcons { ":/MyIco/Image/Main.ico", ":/MyIco/Image/delete.ico", ":/MyIco/Image/deleteall.ico",
    ":/MyIco/Image/folder_open.ico", ":/MyIco/Image/get_info.ico", ":/MyIco/Image/media_playback_start.ico",
    ":/MyIco/Image/plus_orange.ico", ":/MyIco/Image/settings.ico", ":/MyIco/Image/stop.ico" };
const QStringList kBackgrounds { ":/MyImage/Image/bg1.png", ":/MyImage/Image/bg2.png" };

quint32 LittleEndian(const QByteArray& bytes, int iOffset, int iCount)
{
    quint32 value = 0;
    for (int i = iCount - 1; i >= 0; --i)
        value = value << 8 | static_cast<quint8>(bytes.at(iOffset + i));
    return value;
}

} // namespace

void ResourcesTest::CollectionHoldsElevenFiles()
{
    QStringList found;
    for (const char* root : { ":/MyIco", ":/MyImage" }) {
        QDirIterator files(root, QDir::Files, QDirIterator::Subdirectories);
        while (files.hasNext())
            found.append(files.next());
    }
    found.sort();
    QCOMPARE(found, kIcons + kBackgrounds);
}

void ResourcesTest::IconsAre48By48With32Bits_data()
{
    QTest::addColumn<QString>("path");
    for (const QString& strPath : kIcons)
        QTest::newRow(qPrintable(strPath)) << strPath;
}

void ResourcesTest::IconsAre48By48With32Bits()
{
    QFETCH(QString, path);
    QFile file(path);
    QVERIFY(file.open(QIODevice::ReadOnly));
    const QByteArray bytes = file.readAll();
    QCOMPARE(bytes.size(), 9662);
    QCOMPARE(bytes.left(6), QByteArray::fromHex("000001000100"));
    QCOMPARE(LittleEndian(bytes, 6, 1), 48U);
    QCOMPARE(LittleEndian(bytes, 7, 1), 48U);
    QCOMPARE(LittleEndian(bytes, 12, 2), 32U);
    QCOMPARE(LittleEndian(bytes, 14, 4), 9662U - 22U);
    QCOMPARE(LittleEndian(bytes, 18, 4), 22U);

    const QImage image(path);
    QCOMPARE(image.size(), QSize(48, 48));
    QVERIFY(image.hasAlphaChannel());
    QCOMPARE(qAlpha(image.pixel(0, 0)), 0);
    QCOMPARE(qAlpha(image.pixel(24, 24)), 255);
}

void ResourcesTest::ExactlyThreeIconsAreStoredCompressed()
{
    QStringList compressed;
    for (const QString& strPath : kIcons + kBackgrounds) {
        const QResource resource(strPath);
        QVERIFY(resource.isValid());
        if (resource.compressionAlgorithm() != QResource::NoCompression)
            compressed.append(strPath);
    }
    QCOMPARE(compressed,
        QStringList({ ":/MyIco/Image/delete.ico", ":/MyIco/Image/deleteall.ico", ":/MyIco/Image/get_info.ico" }));
}

void ResourcesTest::BackgroundsHaveTheirSizeAndPixelFormat()
{
    struct Expected {
        QString path;
        QSize size;
        quint8 pngColourType; // 6 is RGBA, 2 is RGB
    };
    for (const Expected& expected :
        { Expected { kBackgrounds.at(0), QSize(752, 451), 6 }, Expected { kBackgrounds.at(1), QSize(399, 299), 2 } }) {
        QCOMPARE(QImage(expected.path).size(), expected.size);
        QFile file(expected.path);
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray head = file.read(26);
        QCOMPARE(head.left(4), QByteArray("\x89PNG"));
        QCOMPARE(static_cast<quint8>(head.at(24)), quint8(8));
        QCOMPARE(static_cast<quint8>(head.at(25)), expected.pngColourType);
    }
}

// The table begins 80 pixels from the top. Above it the picture is dark with a light name; below it is light down to
// its last line, so that the label on it can be read.
void ResourcesTest::BackgroundLeavesAHeaderForTheName()
{
    const QImage picture = QImage(kBackgrounds.at(0)).scaled(730, 450, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    int iLightInName = 0;
    for (int y = 0; y < 78; ++y) {
        for (int x = 20; x < 190; ++x)
            iLightInName += qGray(picture.pixel(x, y)) > 200 ? 1 : 0;
    }
    QVERIFY(iLightInName > 1000);
    QVERIFY(qGray(picture.pixel(5, 40)) < 80);
    for (int y = 82; y < 444; ++y) {
        for (int x = 0; x < 730; ++x)
            QVERIFY(qGray(picture.pixel(x, y)) > 200);
    }
}

// At screen scales between whole ones the last pixels of a background are mixed with the first ones.
void ResourcesTest::OppositeEdgesOfTheBackgroundsMeet()
{
    const auto Distance = [](QRgb first, QRgb second) {
        return std::max({ std::abs(qRed(first) - qRed(second)), std::abs(qGreen(first) - qGreen(second)),
            std::abs(qBlue(first) - qBlue(second)) });
    };
    for (const auto& [strPath, size] :
        { std::pair(kBackgrounds.at(0), QSize(730, 450)), std::pair(kBackgrounds.at(1), QSize(400, 300)) }) {
        const QImage picture = QImage(strPath).scaled(size, Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
        const int right = picture.width() - 1;
        const int bottom = picture.height() - 1;
        for (int y = 0; y <= bottom; ++y)
            QVERIFY(Distance(picture.pixel(0, y), picture.pixel(right, y)) <= 8);
        for (int x = 0; x <= right; ++x)
            QVERIFY(Distance(picture.pixel(x, 0), picture.pixel(x, bottom)) <= 8);
    }
}

void ResourcesTest::CollectionIsThereFromTheStartAndCanBeReleased()
{
    QVERIFY(QFile::exists(kIcons.at(0)));
    qCleanupResources_res();
    QVERIFY(!QFile::exists(kIcons.at(0)));
    qInitResources_res();
    QVERIFY(QFile::exists(kIcons.at(0)));
}

PRISMO_TEST_MAIN(ResourcesTest)
#include "resources_test.moc"
