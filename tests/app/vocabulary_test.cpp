#include "settings/settingdialog.h"
#include "tests/app/support/windowtest.h"

#include <memory>

class VocabularyTest : public QObject {
    Q_OBJECT

private slots:
    void initTestCase();

    void DialogFormatsGoBothWays_data();
    void DialogFormatsGoBothWays();
    void DialogBitCountsGoBothWays_data();
    void DialogBitCountsGoBothWays();
    void DialogCompressNames_data();
    void DialogCompressNames();
    void StoredCompressReadsBack_data();
    void StoredCompressReadsBack();
    void WindowBitCountsAreBackendArguments();

    void UnknownFormatIsNULL();
    void UnknownShortNameHasNoIndex();
    void UnknownNamesFallBackToNone();
    void UnknownBitCountIsEmpty();
    void ComparisonsAreExact_data();
    void ComparisonsAreExact();

private:
    std::unique_ptr<MainWindow> m_window;
    std::unique_ptr<SettingDialog> m_dialog;
};

void VocabularyTest::initTestCase()
{
    windowtest::RemoveSettings();
    m_window = std::make_unique<MainWindow>();
    m_dialog = std::make_unique<SettingDialog>();
}

void VocabularyTest::DialogFormatsGoBothWays_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("extension");
    QTest::newRow("jpg") << 0 << ".jpg";
    QTest::newRow("bmp") << 1 << ".bmp";
    QTest::newRow("pcx") << 2 << ".pcx";
    QTest::newRow("png") << 3 << ".png";
    QTest::newRow("tif") << 4 << ".tif";
}

void VocabularyTest::DialogFormatsGoBothWays()
{
    QFETCH(int, index);
    QFETCH(QString, extension);
    QCOMPARE(m_dialog->iFormattoFormat(QString::number(index)), extension);
    QCOMPARE(m_window->iFormattoFormat(QString::number(index)), extension);
    QCOMPARE(m_dialog->FormattoInt(extension), index);
}

void VocabularyTest::DialogBitCountsGoBothWays_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("shown");
    QTest::newRow("1") << 0 << "1 Bit";
    QTest::newRow("8") << 1 << "8 Bits";
    QTest::newRow("24") << 2 << "24 Bits";
}

void VocabularyTest::DialogBitCountsGoBothWays()
{
    QFETCH(int, index);
    QFETCH(QString, shown);
    QCOMPARE(m_dialog->iBitCounttoBitCount(QString::number(index)), shown);
    QCOMPARE(m_dialog->BitCounttoInt(shown), index);
}

void VocabularyTest::DialogCompressNames_data()
{
    QTest::addColumn<int>("index");
    QTest::addColumn<QString>("shortName");
    QTest::addColumn<QString>("fullName");
    QTest::newRow("none") << 0 << "none"
                          << "None";
    QTest::newRow("packbits") << 1 << "packbits"
                              << "PackBits";
    QTest::newRow("lzw:1") << 2 << "lzw:1"
                           << "Lempel-Ziv-Welch-1";
    QTest::newRow("lzw:2") << 3 << "lzw:2"
                           << "Lempel-Ziv-Welch-2";
    QTest::newRow("g3:1d") << 4 << "g3:1d:fill"
                           << "CCITT Group 3 (1-D)";
    QTest::newRow("g3:2d") << 5 << "g3:2d:fill"
                           << "CCITT Group 3 (2-D)";
    QTest::newRow("g4") << 6 << "g4"
                        << "CCITT Group 4";
    QTest::newRow("zip") << 7 << "zip"
                         << "ZIP";
}

void VocabularyTest::DialogCompressNames()
{
    QFETCH(int, index);
    QFETCH(QString, shortName);
    QFETCH(QString, fullName);
    QCOMPARE(m_dialog->CompressMethodtoInt(shortName), index);
    QCOMPARE(m_dialog->CompressMethodShortNametoFullName(shortName), fullName);
    QCOMPARE(m_dialog->CompressMethodFullNametoShortName(fullName), shortName);
}

void VocabularyTest::StoredCompressReadsBack_data()
{
    QTest::addColumn<QString>("stored");
    QTest::addColumn<QString>("shortName");
    QTest::addColumn<QString>("argument");
    QTest::newRow("0") << "0"
                       << "none"
                       << R"("-c" "none")";
    QTest::newRow("1") << "1"
                       << "packbits"
                       << R"("-c" "packbits")";
    QTest::newRow("2") << "2"
                       << "lzw:1"
                       << R"("-c" "lzw:1")";
    QTest::newRow("3") << "3"
                       << "lzw:2"
                       << R"("-c" "lzw:2")";
    QTest::newRow("4") << "4"
                       << "g3:1d:fill"
                       << R"("-c" "g3:1d:fill")";
    QTest::newRow("5") << "5"
                       << "g3:2d:fill"
                       << R"("-c" "g3:2d:fill")";
    QTest::newRow("6 is zip") << "6"
                              << "zip"
                              << R"("-c" "zip")";
    QTest::newRow("7 is nothing") << "7"
                                  << ""
                                  << "";
    QTest::newRow("8 is nothing") << "8"
                                  << ""
                                  << "";
    QTest::newRow("empty is nothing") << ""
                                      << ""
                                      << "";
}

void VocabularyTest::StoredCompressReadsBack()
{
    QFETCH(QString, stored);
    QFETCH(QString, shortName);
    QFETCH(QString, argument);
    QCOMPARE(m_dialog->iCompressMethodtoCompressMethod(stored), shortName);
    QCOMPARE(m_window->iCompressMethodtoCompressMethod(stored), argument);
}

void VocabularyTest::WindowBitCountsAreBackendArguments()
{
    QCOMPARE(m_window->iBitCounttoBitCount("0"), QString(R"("-b" "1")"));
    QCOMPARE(m_window->iBitCounttoBitCount("1"), QString(R"("-b" "8")"));
    QCOMPARE(m_window->iBitCounttoBitCount("2"), QString(R"("-b" "24")"));
}

void VocabularyTest::UnknownFormatIsNULL()
{
    QCOMPARE(m_dialog->iFormattoFormat("7"), QString("NULL"));
    QCOMPARE(m_window->iFormattoFormat(QString()), QString("NULL"));
    QCOMPARE(m_dialog->FormattoInt("NULL"), -1);
}

void VocabularyTest::UnknownShortNameHasNoIndex()
{
    QCOMPARE(m_dialog->CompressMethodtoInt("false"), -1);
    QCOMPARE(m_dialog->CompressMethodtoInt("None"), -1);
}

void VocabularyTest::UnknownNamesFallBackToNone()
{
    QCOMPARE(m_dialog->CompressMethodShortNametoFullName(QString()), QString("None"));
    QCOMPARE(m_dialog->CompressMethodFullNametoShortName("zip"), QString("none"));
}

void VocabularyTest::UnknownBitCountIsEmpty()
{
    QCOMPARE(m_window->iBitCounttoBitCount("3"), QString());
    QCOMPARE(m_dialog->iBitCounttoBitCount("3"), QString());
    QCOMPARE(m_dialog->BitCounttoInt("8 bits"), -1);
}

void VocabularyTest::ComparisonsAreExact_data()
{
    QTest::addColumn<QString>("input");
    QTest::newRow("leading blank") << " 1";
    QTest::newRow("trailing blank") << "1 ";
    QTest::newRow("leading zero") << "01";
    QTest::newRow("sign") << "+1";
    QTest::newRow("negative") << "-1";
}

void VocabularyTest::ComparisonsAreExact()
{
    QFETCH(QString, input);
    QCOMPARE(m_dialog->iFormattoFormat(input), QString("NULL"));
    QCOMPARE(m_window->iFormattoFormat(input), QString("NULL"));
    QCOMPARE(m_dialog->iBitCounttoBitCount(input), QString());
    QCOMPARE(m_window->iBitCounttoBitCount(input), QString());
    QCOMPARE(m_dialog->iCompressMethodtoCompressMethod(input), QString());
    QCOMPARE(m_window->iCompressMethodtoCompressMethod(input), QString());
}

PRISMO_TEST_MAIN(VocabularyTest)
#include "vocabulary_test.moc"
