#pragma once

#include <QList>

#include <functional>

class QWidget;

// The forms have their places in pixels, and the desktop's font may be of any size.

// Whether all of a control's text is seen where the control is: of a label, check box or button its text, of a group
// box its title above what is in it, of a field five digits, of a list each entry. True of a widget of any other kind.
bool HasRoom(const QWidget& control);

// Gives the controls one size, the largest at which the claim holds, but none a larger one than its font has. At eight
// pixels it stops whether the claim holds or not.
void FitFont(const QList<QWidget*>& controls, const std::function<bool()>& claim);

// The same for the claim that each control has room, with their layouts settled.
void FitFont(const QList<QWidget*>& controls);
