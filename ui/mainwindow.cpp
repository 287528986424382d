#include "ui/mainwindow.h"

#include "settings/fittingfont.h"
#include "ui/aboutdlg.h"
#include "ui_mainwindow.h"

#include <QFontMetrics>
#include <QHeaderView>
#include <QPalette>
#include <QPixmap>
#include <QStyle>

#include <limits>

MainWindow::MainWindow(QWidget* parent)
    : QMainWindow(parent)
    , ui(new Ui_MainWindow)
{
    ui->setupUi(this);

    connect(ui->pushButton_Add, SIGNAL(clicked()), this, SLOT(AddFile()));
    connect(ui->pushButton_Remove, SIGNAL(clicked()), this, SLOT(DeleteFile()));
    connect(ui->pushButton_RemoveAll, SIGNAL(clicked()), this, SLOT(DeleteAllFile()));
    connect(ui->pushButton_Setting, SIGNAL(clicked()), this, SLOT(Setting()));
    connect(ui->pushButton_Convert, SIGNAL(clicked()), this, SLOT(StartConvert()));
    connect(ui->pushButton_OutPutPath, SIGNAL(clicked()), this, SLOT(AddOutputPath()));
    connect(ui->pushButton_About, SIGNAL(clicked()), this, SLOT(ShowAbout()));
    connect(ui->tableWidget, SIGNAL(itemSelectionChanged()), this, SLOT(Onkeyboard()));

    SetBackground();
}

MainWindow::~MainWindow() { delete ui; }

// Scaled once: the window never changes its size.
void MainWindow::SetBackground()
{
    QPalette windowPalette = palette();
    const QPixmap background(QStringLiteral(":/MyImage/Image/bg1.png"));
    windowPalette.setBrush(QPalette::All, QPalette::Window,
        QBrush(background.scaled(size(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation)));
    setPalette(windowPalette);
}

void MainWindow::InitAllChoice()
{
    setFixedSize(kWindowSize);

    m_bRunning = false;
    m_strExtension = QStringLiteral(".PDF");

    ui->tableWidget->setRowCount(0);
    ui->tableWidget->setColumnCount(2);
    ui->tableWidget->setFocusPolicy(Qt::NoFocus);
    ui->tableWidget->setSelectionBehavior(QAbstractItemView::SelectRows);
    ui->tableWidget->setHorizontalHeaderLabels({ tr("File Name"), tr("File Size") });

    // Sixths of whole pixels. There is no column 2, so its width goes nowhere.
    const int iWidth = ui->tableWidget->width();
    ui->tableWidget->setColumnWidth(0, iWidth / 6 * 4);
    ui->tableWidget->setColumnWidth(1, iWidth / 6);
    ui->tableWidget->setColumnWidth(2, iWidth / 6);

    ui->pushButton_About->setText(tr("About     "));

    SetConvertIcon(QStringLiteral(":/MyIco/Image/media_playback_start.ico"));

    FitFonts();
}

void MainWindow::FitFonts()
{
    layout()->activate(); // the widgets' parent has its size only then
    FitFont({ ui->pushButton_Add, ui->pushButton_Remove, ui->pushButton_RemoveAll, ui->pushButton_Setting,
        ui->pushButton_About });
    FitFont({ ui->pushButton_Convert });
    FitFont({ ui->label, ui->lineEdit_OutPutPath });

    // The table cuts a long path, but never a size, and a row keeps its height. Below a style sheet a font does not
    // reach the children, and the header paints in its viewport's.
    const QTableWidget* pTable = ui->tableWidget;
    QHeaderView* pHeader = pTable->horizontalHeader();
    FitFont({ ui->tableWidget, pHeader, pHeader->viewport() }, [pTable] {
        const QFontMetrics metrics = pTable->fontMetrics();
        const int iMargin = pTable->style()->pixelMetric(QStyle::PM_FocusFrameHMargin, nullptr, pTable) + 1;
        return metrics.horizontalAdvance(SizeText(std::numeric_limits<qint32>::max()))
            < pTable->columnWidth(1) - 2 * iMargin
            && metrics.height() < pTable->verticalHeader()->defaultSectionSize();
    });
}

void MainWindow::ClearAllInfo() { }

void MainWindow::Setting() { m_settingDialog.exec(); }

void MainWindow::ShowAbout()
{
    AboutDlg aboutDlg;
    aboutDlg.exec();
}

void MainWindow::Onkeyboard() { }
