#include "ui/aboutdlg.h"

#include "ui_aboutdlg.h"

#include <QAbstractTextDocumentLayout>
#include <QDesktopServices>
#include <QImage>
#include <QUrl>

namespace {

constexpr int kDialogWidth = 366;
constexpr int kDialogHeight = 205;
constexpr char kProductPage[] = "https://prismo.example/";

// The form gives the text's sizes in points and its place in pixels, and both fit at one pixel per point. Laid out for
// this device the seven lines fill the text area on a screen of any resolution, instead of running out of it.
QPaintDevice* OnePixelPerPoint()
{
    constexpr int kPointsPerMetre = 2835;
    static QImage device = [] {
        QImage image(1, 1, QImage::Format_ARGB32_Premultiplied);
        image.setDotsPerMeterX(kPointsPerMetre);
        image.setDotsPerMeterY(kPointsPerMetre);
        return image;
    }();
    return &device;
}

} // namespace

AboutDlg::AboutDlg(QWidget* parent)
    : QDialog(parent)
    , ui(new Ui_AboutDlg)
{
    ui->setupUi(this);
    ui->textEdit->document()->documentLayout()->setPaintDevice(OnePixelPerPoint());
    setFixedSize(kDialogWidth, kDialogHeight);
    connect(ui->pushButton_URL, SIGNAL(clicked()), this, SLOT(VisitURL()));
}

AboutDlg::~AboutDlg() { delete ui; }

void AboutDlg::VisitURL() { QDesktopServices::openUrl(QUrl(QLatin1String(kProductPage))); }
