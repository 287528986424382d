#include "tests/app/support/dialogdriver.h"

#include <QApplication>
#include <QEvent>
#include <QPointer>
#include <QWidget>

DialogDriver::DialogDriver() { qApp->installEventFilter(this); }

DialogDriver::~DialogDriver() { qApp->removeEventFilter(this); }

void DialogDriver::Expect(Action action) { m_actions.push_back(std::move(action)); }

bool DialogDriver::eventFilter(QObject* watched, QEvent* event)
{
    auto* dialog = qobject_cast<QWidget*>(watched);
    if (event->type() != QEvent::Show || !dialog || !dialog->isWindow() || !dialog->isModal())
        return false;

    ++m_iShown;
    Action action = [](QWidget* unannounced) { unannounced->close(); };
    if (m_actions.empty()) {
        ++m_iUnexpected;
    } else {
        action = std::move(m_actions.front());
        m_actions.pop_front();
    }
    // Queued: the dialog is not fully shown yet, and its own event loop is about to begin.
    QMetaObject::invokeMethod(
        this,
        [action, target = QPointer<QWidget>(dialog)] {
            if (target)
                action(target);
        },
        Qt::QueuedConnection);
    return false;
}
