#pragma once

#include <QObject>

#include <deque>
#include <functional>

class QWidget;

// Works the modal dialogs that the code under test opens. Give it one action per dialog that is to come; each runs in
// the dialog's own event loop, after the dialog is shown. A dialog that nobody announced is closed and counted.
class DialogDriver : public QObject {
public:
    using Action = std::function<void(QWidget*)>;

    DialogDriver();
    ~DialogDriver() override;

    void Expect(Action action);

    int ShownCount() const { return m_iShown; }
    int UnexpectedCount() const { return m_iUnexpected; }
    bool AllShown() const { return m_actions.empty() && m_iUnexpected == 0; }

protected:
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    std::deque<Action> m_actions;
    int m_iShown = 0;
    int m_iUnexpected = 0;
};
