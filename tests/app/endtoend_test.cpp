// From Add to the image on disk, by the user's clicks alone, with our own backend: for each of the five formats.

#include "tests/app/support/dialogdriver.h"
#include "tests/app/support/windowtest.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDir>
#include <QFile>
#include <QImage>
#include <QLineEdit>
#include <QProcess>
#include <QPushButton>
#include <QTableWidget>
#include <QTemporaryDir>

#include <tiffio.h>

#include <functional>
#include <memory>

using namespace windowtest;

class EndToEndTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void cleanup();

    void JobBecomesAnImageOfEachFormat_data();
    void JobBecomesAnImageOfEachFormat();
    void EmfSpoolFileBecomesImagesOfEachFormat_data();
    void EmfSpoolFileBecomesImagesOfEachFormat();
    void FaxClassMakesA1728PixelWideTiff();
    void DamagedJobDoesNotStopTheOthers();
    void BlanksInPathsReachTheBackendWhole();

private:
    QString Path(const char* name) { return m_folder->filePath(name); }
    QString WriteJob(const char* name, const QByteArray& bytes)
    {
        QFile file(Path(name));
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("cannot write %s", name);
        return file.fileName();
    }
    // Opens the settings dialog from its button, changes what the action changes, and presses OK.
    void Set(const std::function<void(QWidget&)>& action);
    // Chooses the output folder in its dialog, presses Convert and waits for the end of the run.
    void Convert(const QString& strFolder);

    std::unique_ptr<QTemporaryDir> m_folder;
    std::unique_ptr<MainWindow> m_window;
};

namespace {

constexpr int kPageWidth = 850; // Letter at 100 dots per inch
constexpr int kPageHeight = 1100;
const QRect kSquare(125, 150, 104, 100);

// A PCL 5 job: one black square of 104 by 100 dots at 100 dots per inch, on Letter.
QByteArray squareJob()
{
    QByteArray job = "\x1b"
                     "E\x1b&l0o2A\x1b*p300x300Y\x1b*t100R\x1b*r1A";
    for (int row = 0; row < kSquare.height(); ++row)
        job += "\x1b*b13W" + QByteArray(13, '\xff');
    return job
        + "\x1b*rB\x0c\x1b"
          "E";
}

// 3 planes of 8 bits in run-length coded rows, or 1 plane of 8 or 1 bits.
QImage readPcx(const QString& strPath)
{
    QFile file(strPath);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const QByteArray bytes = file.readAll();
    const auto Byte = [&bytes](qsizetype i) { return static_cast<quint8>(i < bytes.size() ? bytes.at(i) : 0); };
    const auto Word = [&Byte](qsizetype i) { return Byte(i) | Byte(i + 1) << 8; };
    if (bytes.size() < 128 || Byte(0) != 10 || Byte(2) != 1)
        return {};
    const int bits = Byte(3);
    const int width = Word(8) - Word(4) + 1;
    const int height = Word(10) - Word(6) + 1;
    const int planes = Byte(65);
    const int bytesPerLine = Word(66);
    QImage image(width, height, QImage::Format_RGB32);
    qsizetype at = 128;
    for (int y = 0; y < height; ++y) {
        QByteArray row;
        while (row.size() < static_cast<qsizetype>(planes) * bytesPerLine && at < bytes.size()) {
            const int count = Byte(at) >= 0xC0 ? Byte(at++) & 0x3F : 1;
            row.append(count, bytes.at(at++));
        }
        if (row.size() != static_cast<qsizetype>(planes) * bytesPerLine)
            return {};
        for (int x = 0; x < width; ++x) {
            const auto Sample = [&row, bytesPerLine, bits, x](int plane) {
                const auto value = static_cast<quint8>(row.at(plane * bytesPerLine + x * bits / 8));
                return bits == 8 ? int(value) : (value >> (7 - x % 8) & 1) * 255;
            };
            image.setPixel(
                x, y, planes == 3 ? qRgb(Sample(0), Sample(1), Sample(2)) : qRgb(Sample(0), Sample(0), Sample(0)));
        }
    }
    return image;
}

QImage readTiff(const QString& strPath)
{
    TIFF* tiff = TIFFOpen(qPrintable(strPath), "r");
    if (!tiff)
        return {};
    uint32_t width = 0;
    uint32_t height = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_IMAGELENGTH, &height);
    QImage image(static_cast<int>(width), static_cast<int>(height), QImage::Format_RGBA8888);
    const int ok = TIFFReadRGBAImageOriented(
        tiff, width, height, reinterpret_cast<uint32_t*>(image.bits()), ORIENTATION_TOPLEFT, 1);
    TIFFClose(tiff);
    return ok ? image : QImage();
}

QImage readAny(const QString& strPath)
{
    if (strPath.endsWith(".pcx"))
        return readPcx(strPath);
    if (strPath.endsWith(".tif"))
        return readTiff(strPath);
    return QImage(strPath);
}

// The smallest rectangle that holds everything darker than the middle.
QRect darkPart(const QImage& image)
{
    QRect dark;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            if (qGray(image.pixel(x, y)) < 128)
                dark |= QRect(x, y, 1, 1);
        }
    }
    return dark;
}

} // namespace

void EndToEndTest::initTestCase()
{
    const QString strBackend = QCoreApplication::applicationDirPath() + "/quillrip";
    QFile::remove(strBackend);
    QVERIFY(QFile::copy(QStringLiteral(PRISMO_BACKEND), strBackend));
}

void EndToEndTest::init()
{
    RemoveSettings();
    m_folder = std::make_unique<QTemporaryDir>();
    QVERIFY(QDir(m_folder->path()).mkdir("images"));
    m_window = std::make_unique<MainWindow>();
    m_window->setFixedSize(730, 450);
    m_window->show();
    m_window->InitAllChoice();
}

void EndToEndTest::cleanup()
{
    m_window.reset();
    RemoveSettings();
}

void EndToEndTest::Set(const std::function<void(QWidget&)>& action)
{
    DialogDriver driver;
    driver.Expect([&action](QWidget* dialog) {
        action(*dialog);
        ClickButton(*dialog, "pushButton_Ok");
    });
    ClickButton(*m_window, "pushButton_Setting");
    QVERIFY(driver.AllShown());
}

void EndToEndTest::Convert(const QString& strFolder)
{
    DialogDriver driver;
    driver.Expect([&strFolder](QWidget* dialog) { ChooseInFileDialog(dialog, { strFolder }); });
    ClickButton(*m_window, "pushButton_OutPutPath");
    ClickButton(*m_window, "pushButton_Convert");
    QVERIFY(WaitUntil([this] { return !MainWindowProbe::Running(*m_window); }));
    QVERIFY(driver.AllShown());
    QCOMPARE(Child<QPushButton>(*m_window, "pushButton_Convert")->text(), QString("Convert"));
}

void EndToEndTest::JobBecomesAnImageOfEachFormat_data()
{
    QTest::addColumn<QString>("format");
    QTest::addColumn<QString>("depth");
    QTest::addColumn<QString>("compression");
    QTest::newRow("JPEG") << ".jpg"
                          << "24 Bits"
                          << "";
    QTest::newRow("BMP") << ".bmp"
                         << "1 Bit"
                         << "";
    QTest::newRow("PCX") << ".pcx"
                         << "8 Bits"
                         << "";
    QTest::newRow("PCX in colour") << ".pcx"
                                   << "24 Bits"
                                   << "";
    QTest::newRow("PNG") << ".png"
                         << "24 Bits"
                         << "";
    QTest::newRow("TIFF G4") << ".tif"
                             << "1 Bit"
                             << "CCITT Group 4";
    QTest::newRow("TIFF LZW") << ".tif"
                              << "24 Bits"
                              << "Lempel-Ziv-Welch-2";
}

void EndToEndTest::JobBecomesAnImageOfEachFormat()
{
    QFETCH(QString, format);
    QFETCH(QString, depth);
    QFETCH(QString, compression);
    AddRows(*m_window, { WriteJob("square.pcl", squareJob()) });
    Set([&](QWidget& dialog) {
        Child<QComboBox>(dialog, "comboBox_BitCount")->setCurrentText(depth);
        Child<QComboBox>(dialog, "comboBox_Format")->setCurrentText(format);
        if (!compression.isEmpty())
            Child<QComboBox>(dialog, "comboBox_Compress")->setCurrentText(compression);
        Child<QCheckBox>(dialog, "checkBox_PageSize")->click();
        Child<QLineEdit>(dialog, "lineEdit_PageSizeX")->setText(QString::number(kPageWidth));
        Child<QLineEdit>(dialog, "lineEdit_PageSizeY")->setText(QString::number(kPageHeight));
    });
    Convert(Path("images"));

    QCOMPARE(QDir(Path("images")).entryList(QDir::Files), QStringList({ "square" + format }));
    const QImage image = readAny(Path("images/square") + format);
    QCOMPARE(image.size(), QSize(kPageWidth, kPageHeight));
    QCOMPARE(darkPart(image), kSquare);
    QVERIFY(qGray(image.pixel(kSquare.center())) < 8);
    QVERIFY(qGray(image.pixel(5, 5)) > 247);
}

void EndToEndTest::EmfSpoolFileBecomesImagesOfEachFormat_data()
{
    QTest::addColumn<QString>("format");
    for (const char* format : { ".jpg", ".bmp", ".pcx", ".png", ".tif" })
        QTest::newRow(format) << format;
}

// A spool file of Windows with metafiles for pages, two of them. A TIFF holds both.
void EndToEndTest::EmfSpoolFileBecomesImagesOfEachFormat()
{
    QFETCH(QString, format);
    AddRows(*m_window, { QStringLiteral(PRISMO_SAMPLES "/travel.spl") });
    Set([&format](QWidget& dialog) {
        Child<QComboBox>(dialog, "comboBox_BitCount")->setCurrentText("24 Bits");
        Child<QComboBox>(dialog, "comboBox_Format")->setCurrentText(format);
        Child<QCheckBox>(dialog, "checkBox_PageSize")->click();
        Child<QLineEdit>(dialog, "lineEdit_PageSizeX")->setText(QString::number(kPageWidth));
        Child<QLineEdit>(dialog, "lineEdit_PageSizeY")->setText(QString::number(kPageHeight));
    });
    Convert(Path("images"));

    QStringList files { "travel" + format };
    if (format != ".tif")
        files.append("travel_p0002" + format);
    QCOMPARE(QDir(Path("images")).entryList(QDir::Files, QDir::Name), files);
    const QImage first = readAny(Path("images/travel") + format);
    QCOMPARE(first.size(), QSize(kPageWidth, kPageHeight));
    const auto IsNear = [&first](const QPoint& place, const QColor& color) {
        const QColor drawn(first.pixel(place));
        return std::abs(drawn.red() - color.red()) < 24 && std::abs(drawn.green() - color.green()) < 24
            && std::abs(drawn.blue() - color.blue()) < 24;
    };
    QVERIFY(IsNear({ 82, 60 }, QColor(0x12, 0x3A, 0x8A))); // the heading's dark end
    QVERIFY(IsNear({ 425, 920 }, QColor(0xF5, 0xE6, 0xC8))); // within the star
    QVERIFY(IsNear({ 20, 20 }, Qt::white));
}

void EndToEndTest::FaxClassMakesA1728PixelWideTiff()
{
    AddRows(*m_window, { WriteJob("square.pcl", squareJob()) });
    Set([](QWidget& dialog) {
        Child<QComboBox>(dialog, "comboBox_Format")->setCurrentText(".tif");
        Child<QComboBox>(dialog, "comboBox_FaxKind")->setCurrentIndex(2);
    });
    Convert(Path("images"));
    TIFF* tiff = TIFFOpen(qPrintable(Path("images/square.tif")), "r");
    QVERIFY(tiff);
    uint32_t width = 0;
    uint16_t compression = 0;
    float yResolution = 0;
    TIFFGetField(tiff, TIFFTAG_IMAGEWIDTH, &width);
    TIFFGetField(tiff, TIFFTAG_COMPRESSION, &compression);
    TIFFGetField(tiff, TIFFTAG_YRESOLUTION, &yResolution);
    TIFFClose(tiff);
    QCOMPARE(width, 1728U);
    QCOMPARE(compression, static_cast<uint16_t>(COMPRESSION_CCITTFAX3));
    QCOMPARE(yResolution, 196.0F);
}

void EndToEndTest::DamagedJobDoesNotStopTheOthers()
{
    AddRows(*m_window,
        { WriteJob("first.pcl", squareJob()), WriteJob("empty.prn", QByteArray()), WriteJob("last.spl", squareJob()) });
    Set([](QWidget& dialog) { Child<QComboBox>(dialog, "comboBox_Format")->setCurrentText(".png"); });
    Convert(Path("images"));
    QCOMPARE(QDir(Path("images")).entryList(QDir::Files, QDir::Name), QStringList({ "first.png", "last.png" }));
}

void EndToEndTest::BlanksInPathsReachTheBackendWhole()
{
    QVERIFY(QDir(m_folder->path()).mkdir("my images"));
    AddRows(*m_window, { WriteJob("my first job.pcl", squareJob()) });
    Convert(Path("my images"));
    QCOMPARE(QDir(Path("my images")).entryList(QDir::Files), QStringList({ "my first job.bmp" }));
}

PRISMO_TEST_MAIN(EndToEndTest)
#include "endtoend_test.moc"
