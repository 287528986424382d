#include "settings/settingdialog.h"

#include "settings/fittingfont.h"
#include "settings/optionvocabulary.h"
#include "ui_settingdialog.h"

#include <QAbstractItemView>
#include <QPalette>
#include <QPixmap>
#include <QShowEvent>

namespace {

constexpr int kDialogWidth = 400;
constexpr int kDialogHeight = 300;

template <std::size_t N> QStringList ListOf(const std::array<const char*, N>& table)
{
    QStringList entries;
    for (const char* chEntry : table)
        entries.append(QLatin1String(chEntry));
    return entries;
}

// A bilevel page has no use for JPEG.
const QStringList& OneBitFormats()
{
    static const QStringList formats { ".bmp", ".pcx", ".png", ".tif" };
    return formats;
}

// Which compression methods a TIFF of each depth offers, by short name. "lzw:2" predicts from the pixel to the left,
// which needs whole samples; the CCITT methods know only black and white.
const QStringList& CompressOfBitCount(int iBitCount)
{
    static const QStringList oneBit { "none", "packbits", "lzw:1", "g3:1d:fill", "g3:2d:fill", "g4", "zip" };
    static const QStringList eightBits { "none", "packbits", "lzw:1", "lzw:2", "zip" };
    static const QStringList twentyFourBits { "none", "packbits", "lzw:2", "zip" };
    if (iBitCount == 0)
        return oneBit;
    return iBitCount == 1 ? eightBits : twentyFourBits;
}

} // namespace

SettingDialog::SettingDialog(QWidget* parent)
    : QDialog(parent)
    , ui(new Ui_SettingDialog)
{
    ui->setupUi(this);

    connect(ui->pushButton_Ok, SIGNAL(clicked()), this, SLOT(OnButtonOk()));
    connect(ui->checkBox_PageSize, SIGNAL(clicked()), this, SLOT(ClickCheckBoxResizePage()));
    connect(ui->checkBox_Resolution, SIGNAL(clicked()), this, SLOT(ClickCheckBoxResolution()));
    connect(ui->pushButton_Reset, SIGNAL(clicked()), this, SLOT(OnButtonReset()));
    connect(ui->comboBox_Format, SIGNAL(currentIndexChanged(int)), this, SLOT(ChangeFormat()));
    connect(ui->comboBox_Compress, SIGNAL(currentIndexChanged(int)), this, SLOT(ChangeCompress()));
    connect(ui->comboBox_BitCount, SIGNAL(currentIndexChanged(int)), this, SLOT(ChangeBitCount()));
    connect(ui->comboBox_FaxKind, SIGNAL(currentIndexChanged(int)), this, SLOT(ChangeFaxTiff()));

    SetBackground();
    NameLists();

    // Filling the lists already runs the slots above, so the connections come first. Then each has its longest entry.
    IniAllChoice();
    FitFonts();
    LoadInfo();
}

SettingDialog::~SettingDialog() { delete ui; }

void SettingDialog::SetBackground()
{
    QPalette windowPalette = palette();
    const QPixmap background(QStringLiteral(":/MyImage/Image/bg2.png"));
    windowPalette.setBrush(
        QPalette::Window, QBrush(background.scaled(size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    setPalette(windowPalette);
}

// The list that a combo box opens is a window of its own for a screen reader.
void SettingDialog::NameLists()
{
    for (const QComboBox* pList :
        { ui->comboBox_BitCount, ui->comboBox_Format, ui->comboBox_Compress, ui->comboBox_FaxKind })
        pList->view()->setAccessibleName(pList->accessibleName());
}

void SettingDialog::showEvent(QShowEvent* event)
{
    QDialog::showEvent(event);
    if (event->spontaneous())
        return;
    // A fax class leaves the upper controls disabled. OK never is, so there is an end.
    QWidget* pFirst = ui->checkBox_PageSize;
    while (!pFirst->isEnabled() || !(pFirst->focusPolicy() & Qt::TabFocus))
        pFirst = pFirst->nextInFocusChain();
    pFirst->setFocus(Qt::OtherFocusReason);
}

// Blanks put the labels of the two lower lists in their places, so a label's size and its list's go together.
void SettingDialog::FitFonts()
{
    FitFont({ ui->checkBox_PageSize, ui->label_3, ui->lineEdit_PageSizeX, ui->label_4, ui->lineEdit_PageSizeY,
        ui->checkBox_Resolution, ui->label_5, ui->lineEdit_ResoX, ui->label_6, ui->lineEdit_ResoY });
    FitFont({ ui->comboBox_BitCount });
    FitFont({ ui->label_2, ui->label, ui->comboBox_Format });
    FitFont({ ui->label_9, ui->comboBox_Compress });
    FitFont({ ui->label_7, ui->comboBox_FaxKind });
    FitFont({ ui->groupBox }); // its children have sizes of their own by now
    FitFont({ ui->pushButton_Reset, ui->pushButton_Ok, ui->pushButton_Cancel });
}

// Clearing a list runs its slot with an empty text, the first entry runs it again; everything below counts on that.
void SettingDialog::FillList(QComboBox* pList, const QStringList& entries)
{
    pList->clear();
    for (const QString& strEntry : entries)
        pList->addItem(strEntry);
}

QStringList SettingDialog::CompressNames(const QStringList& shortNames)
{
    QStringList fullNames;
    for (const QString& strShortName : shortNames)
        fullNames.append(CompressMethodShortNametoFullName(strShortName));
    return fullNames;
}

void SettingDialog::IniAllChoice()
{
    FillList(ui->comboBox_Format, ListOf(vocabulary::kFormats));
    ui->comboBox_Format->setCurrentIndex(0);

    // "1 Bit" becomes current, and its slot replaces the formats above by those without ".jpg".
    FillList(ui->comboBox_BitCount, ListOf(vocabulary::kBitCounts));
    ui->comboBox_BitCount->setCurrentIndex(0);

    ui->lineEdit_PageSizeX->setText(QString());
    ui->lineEdit_PageSizeY->setText(QString());
    ui->lineEdit_ResoX->setText(QString());
    ui->lineEdit_ResoY->setText(QString());

    ui->checkBox_PageSize->setChecked(false);
    ui->checkBox_Resolution->setChecked(false);
    EnablePageSize();
    EnableResolution();

    // The fax list's first entry enables the compression list again, with all its methods, although ".bmp" is current.
    FillList(ui->comboBox_Compress, CompressNames(ListOf(vocabulary::kCompressShortNames)));
    FillList(ui->comboBox_FaxKind, ListOf(vocabulary::kFaxKinds));

    setFixedSize(kDialogWidth, kDialogHeight);
}

void SettingDialog::BitCountChanged(QString strBitCount)
{
    const int iBitCount = vocabulary::IndexOf(vocabulary::kBitCounts, strBitCount);
    if (iBitCount < 0)
        return;
    FillList(ui->comboBox_Compress, CompressNames(CompressOfBitCount(iBitCount)));
    FillList(ui->comboBox_Format, iBitCount == 0 ? OneBitFormats() : ListOf(vocabulary::kFormats));
}

void SettingDialog::FormatChanged(QString strFormat)
{
    if (strFormat != QLatin1String(".tif")) {
        ui->comboBox_FaxKind->setEnabled(false);
        ui->comboBox_Compress->setEnabled(false);
        return;
    }
    ui->comboBox_Compress->setEnabled(true);
    ui->comboBox_FaxKind->setEnabled(true);

    const int iBitCount = vocabulary::IndexOf(vocabulary::kBitCounts, ui->comboBox_BitCount->currentText());
    if (iBitCount >= 0)
        FillList(ui->comboBox_Compress, CompressNames(CompressOfBitCount(iBitCount)));
}

void SettingDialog::ChangeFormat()
{
    FormatChanged(ui->comboBox_Format->currentText());
    if (ui->comboBox_Format->currentText() == QLatin1String(".tif")) {
        ChangeFaxTiff();
        return;
    }
    ui->checkBox_PageSize->setEnabled(true);
    EnablePageSize();
    ui->checkBox_Resolution->setEnabled(true);
    EnableResolution();
    ui->comboBox_BitCount->setEnabled(true);
}

void SettingDialog::ChangeBitCount() { BitCountChanged(ui->comboBox_BitCount->currentText()); }

// Nothing depends on the compression method.
void SettingDialog::ChangeCompress() { }

// A fax class fixes size, resolution, depth and compression. The row alone decides, whatever the format is.
void SettingDialog::ChangeFaxTiff()
{
    if (ui->comboBox_FaxKind->currentIndex() != 0) {
        ui->checkBox_PageSize->setEnabled(false);
        ui->lineEdit_PageSizeX->setEnabled(false);
        ui->lineEdit_PageSizeY->setEnabled(false);
        ui->checkBox_Resolution->setEnabled(false);
        ui->lineEdit_ResoX->setEnabled(false);
        ui->lineEdit_ResoY->setEnabled(false);
        ui->comboBox_Compress->setEnabled(false);
        ui->comboBox_BitCount->setEnabled(false);
        return;
    }
    ui->checkBox_PageSize->setEnabled(true);
    EnablePageSize();
    ui->checkBox_Resolution->setEnabled(true);
    EnableResolution();
    ui->comboBox_Compress->setEnabled(true);
    ui->comboBox_BitCount->setEnabled(true);
}

void SettingDialog::ClickCheckBoxResizePage() { EnablePageSize(); }

void SettingDialog::ClickCheckBoxResolution() { EnableResolution(); }

void SettingDialog::EnablePageSize()
{
    const bool bChecked = ui->checkBox_PageSize->isChecked();
    ui->lineEdit_PageSizeX->setEnabled(bChecked);
    ui->lineEdit_PageSizeY->setEnabled(bChecked);
}

void SettingDialog::EnableResolution()
{
    const bool bChecked = ui->checkBox_Resolution->isChecked();
    ui->lineEdit_ResoX->setEnabled(bChecked);
    ui->lineEdit_ResoY->setEnabled(bChecked);
}

void SettingDialog::OnButtonReset() { IniAllChoice(); }

void SettingDialog::OnButtonOk()
{
    SaveInfo();
    QDialog::accept();
}
