#pragma once

#include "quillrip/pcl/logical_page.h"

#include <functional>
#include <vector>

namespace quillrip::pcl {

class UnderlineRun;
struct Environment;
struct State;

/// The active position, and what moves it between the margins. In the axes of the present print direction.
class Cursor {
public:
    /// `endPage` ejects the page, blank or not. All references must outlive the cursor.
    Cursor(State& state, const Environment& environment, UnderlineRun& underline, std::function<void()> endPage);

    Position position() const { return m_at; }
    InternalUnits x() const { return m_at.x; }
    InternalUnits y() const { return m_at.y; }
    /// Puts it somewhere as if it had always been there: no underline ends, no margin counts.
    void restore(Position place) { m_at = place; }

    /// To the left margin, on the first line.
    void home();
    bool isAtHome() const { return m_at == homePosition(); }
    Position homePosition() const;
    void moveTo(InternalUnits x, InternalUnits y);
    /// The same, but the logical page holds it.
    void moveToClamped(InternalUnits x, InternalUnits y);
    /// The place on the sheet is kept: a pop finds it in whatever direction.
    void push();
    void pop();
    void clearStack() { m_stack.clear(); }

    void carriageReturn();
    /// Ends the page below the last line.
    void lineFeed(InternalUnits distance);
    void formFeed();
    void backspace(InternalUnits columnWidth);
    void tabulate(InternalUnits columnWidth);

    /// Text: a character of that width is to be printed. False when it is not, for it would cross the right margin;
    /// where lines wrap, it goes to the next.
    bool makeRoom(InternalUnits width);
    /// Where that character stands: over the middle of the last one when both have widths of their own and a backspace
    /// lies between them.
    Position characterPlace(InternalUnits width, bool hasOwnWidth) const;
    /// It has been printed.
    void passCharacter(InternalUnits width, bool hasOwnWidth);

private:
    void advance(InternalUnits distance);

    State& m_state;
    const Environment& m_environment;
    UnderlineRun& m_underline;
    std::function<void()> m_endPage;
    Position m_at;
    std::vector<Position> m_stack; ///< direction 0
    InternalUnits m_lastAdvance = 0;
    bool m_isClipped = false; ///< text runs on beyond the right margin, unseen
    bool m_isBeyondMargin = false; ///< a command put the cursor there: text then runs to the page's edge
    struct {
        bool isPending = false;
        InternalUnits x = 0;
        InternalUnits advance = 0;
    } m_backspaced;
};

} // namespace quillrip::pcl
