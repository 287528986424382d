#include "settings/fittingfont.h"

#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QEvent>
#include <QFontInfo>
#include <QGroupBox>
#include <QLabel>
#include <QLayout>
#include <QLineEdit>
#include <QPushButton>
#include <QStyleOptionButton>
#include <QStyleOptionComboBox>
#include <QStyleOptionFrame>

#include <algorithm>

namespace {

constexpr int kSmallestPixels = 8;
constexpr int kIconGap = 4; // between a button's icon and its text, in the toolkit's styles
constexpr int kSideGap = 3; // between a button's edge and what is in it

bool Holds(const QSize& room, const QSize& needed)
{
    return needed.width() <= room.width() && needed.height() <= room.height();
}

QSize TextSize(const QWidget& control, const QString& strText)
{
    const QFontMetrics metrics = control.fontMetrics();
    return { metrics.horizontalAdvance(strText), metrics.height() };
}

bool ButtonHasRoom(const QPushButton& button)
{
    QStyleOptionButton option;
    option.initFrom(&button);
    const QRect contents = button.style()->subElementRect(QStyle::SE_PushButtonContents, &option, &button);
    QSize needed = TextSize(button, button.text()) + QSize(2 * kSideGap, 0);
    if (!button.icon().isNull())
        needed.rwidth() += button.iconSize().width() + kIconGap;
    return Holds(contents.size(), needed);
}

bool ListHasRoom(const QComboBox& list)
{
    QStyleOptionComboBox option;
    option.initFrom(&list);
    const QRect field = list.style()->subControlRect(QStyle::CC_ComboBox, &option, QStyle::SC_ComboBoxEditField, &list);
    for (int i = 0; i < list.count(); ++i) {
        if (!Holds(field.size(), TextSize(list, list.itemText(i))))
            return false;
    }
    return true;
}

bool FieldHasRoom(const QLineEdit& field)
{
    constexpr int kDigits = 5;
    QStyleOptionFrame option;
    option.initFrom(&field);
    option.lineWidth = field.style()->pixelMetric(QStyle::PM_DefaultFrameWidth, &option, &field);
    const QRect contents = field.style()->subElementRect(QStyle::SE_LineEditContents, &option, &field);
    const QString strLongest(std::min(field.maxLength(), kDigits), QLatin1Char('0'));
    return Holds(contents.size(), TextSize(field, strLongest));
}

// A control that runs over its parent's edge is cut there. Its frame may be, since a style can want more height than
// the form has whatever the font is; its text, in the middle of it, may not.
bool TextLiesWithinParents(const QWidget& control)
{
    const int iHeight = std::min(control.height(), control.fontMetrics().height());
    QRect place(0, (control.height() - iHeight) / 2, control.width(), iHeight);
    for (const QWidget* pWidget = &control; !pWidget->isWindow() && pWidget->parentWidget();
         pWidget = pWidget->parentWidget()) {
        place.translate(pWidget->pos());
        if (place.top() < 0 || place.bottom() >= pWidget->parentWidget()->height())
            return false;
    }
    return true;
}

} // namespace

bool HasRoom(const QWidget& control)
{
    if (!TextLiesWithinParents(control))
        return false;
    if (const auto* pButton = qobject_cast<const QPushButton*>(&control))
        return ButtonHasRoom(*pButton);
    if (const auto* pList = qobject_cast<const QComboBox*>(&control))
        return ListHasRoom(*pList);
    if (const auto* pField = qobject_cast<const QLineEdit*>(&control))
        return FieldHasRoom(*pField);
    if (const auto* pGroup = qobject_cast<const QGroupBox*>(&control))
        return pGroup->fontMetrics().height() <= pGroup->childrenRect().top();
    if (qobject_cast<const QLabel*>(&control) || qobject_cast<const QCheckBox*>(&control))
        return Holds(control.size(), control.sizeHint());
    return true;
}

void FitFont(const QList<QWidget*>& controls, const std::function<bool()>& claim)
{
    int iPixels = 0;
    for (QWidget* pControl : controls) {
        pControl->ensurePolished();
        iPixels = std::max(iPixels, QFontInfo(pControl->font()).pixelSize());
    }
    while (!claim() && iPixels > kSmallestPixels) {
        --iPixels;
        for (QWidget* pControl : controls) {
            QFont font = pControl->font();
            if (QFontInfo(font).pixelSize() <= iPixels)
                continue;
            font.setPixelSize(iPixels);
            pControl->setFont(font);
            // A list keeps its least size over a change of the font, though not over one of the style.
            QEvent styleChange(QEvent::StyleChange);
            if (qobject_cast<QComboBox*>(pControl))
                QCoreApplication::sendEvent(pControl, &styleChange);
        }
    }
}

void FitFont(const QList<QWidget*>& controls)
{
    FitFont(controls, [&controls] {
        for (const QWidget* pControl : controls) {
            if (QLayout* pLayout = pControl->parentWidget()->layout())
                pLayout->activate();
        }
        return std::all_of(
            controls.begin(), controls.end(), [](const QWidget* pControl) { return HasRoom(*pControl); });
    });
}
