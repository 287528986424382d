#include "ui/aboutdlg.h"

#include "settings/fittingfont.h"
#include "ui_aboutdlg.h"

#include <QAbstractTextDocumentLayout>
#include <QDesktopServices>
#include <QImage>
#include <QTextBlock>
#include <QTextDocument>
#include <QUrl>

namespace {

constexpr int kDialogWidth = 366;
constexpr int kDialogHeight = 205;
constexpr int kMostDotsPerInch = 72;
constexpr int kFewestDotsPerInch = 36;
constexpr char kProductPage[] = "https://prismo.example/";

// The form gives the text's sizes in points and its place in pixels. Laid out for this device, of so many dots per
// inch, a point has the same size on a screen of any resolution.
QPaintDevice* DeviceOf(int iDotsPerInch)
{
    static QImage device(1, 1, QImage::Format_ARGB32_Premultiplied);
    const int iDotsPerMetre = qRound(iDotsPerInch / 0.0254);
    device.setDotsPerMeterX(iDotsPerMetre);
    device.setDotsPerMeterY(iDotsPerMetre);
    return &device;
}

bool HasOneLineAParagraph(const QTextDocument& document)
{
    for (QTextBlock block = document.begin(); block.isValid(); block = block.next()) {
        if (block.layout()->lineCount() > 1)
            return false;
    }
    return true;
}

} // namespace

AboutDlg::AboutDlg(QWidget* parent)
    : QDialog(parent)
    , ui(new Ui_AboutDlg)
{
    ui->setupUi(this);
    FitText();
    FitFont({ ui->pushButton_URL });
    setFixedSize(kDialogWidth, kDialogHeight);
    connect(ui->pushButton_URL, SIGNAL(clicked()), this, SLOT(VisitURL()));
}

AboutDlg::~AboutDlg() { delete ui; }

// One pixel per point fills the text's place with the seven lines of most fonts; for those with taller or wider lines a
// point becomes smaller.
void AboutDlg::FitText()
{
    const QTextEdit* pText = ui->textEdit;
    QTextDocument* pDocument = pText->document();
    const int iHeight = pText->height() - 2 * pText->frameWidth();
    pDocument->setTextWidth(pText->width() - 2 * pText->frameWidth());
    for (int iDotsPerInch = kMostDotsPerInch; iDotsPerInch >= kFewestDotsPerInch; --iDotsPerInch) {
        pDocument->documentLayout()->setPaintDevice(DeviceOf(iDotsPerInch));
        pDocument->markContentsDirty(0, pDocument->characterCount());
        if (pDocument->size().height() <= iHeight && HasOneLineAParagraph(*pDocument))
            return;
    }
}

void AboutDlg::VisitURL() { QDesktopServices::openUrl(QUrl(QLatin1String(kProductPage))); }
