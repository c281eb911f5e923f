// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#pragma once

#include <QByteArray>
#include <QObject>
#include <QStringList>

#include <cwchar>
#include <functional>
#include <optional>
#include <string>

class QSocketNotifier;
struct editline;
struct historyW;

/// The line at the bottom of a terminal in which the user types commands: a prompt, editing, the
/// history of the session, and completion with Tab. A line that is entered goes away; whoever runs
/// it prints it.
///
/// What else is printed on the terminal has to be printed between hide() and show().
class Prompt : public QObject
{
    Q_OBJECT

public:
    /// Returns the words that the last word of a line may become.
    using Complete = std::function<QStringList(const QString &line)>;

    /// Returns whether standard input and output are a terminal whose cursor can be moved.
    static bool isPossible();

    explicit Prompt(Complete complete, QObject *parent = nullptr);
    /// Takes the line away, and leaves the terminal as it was.
    ~Prompt() override;

    /// Takes the line off the terminal. The next output appears in its place.
    void hide();
    /// Draws the line again, with what has been typed. The cursor must be in the first column.
    void show();
    /// Draws the line again after the terminal has changed.
    void redraw();

Q_SIGNALS:
    void lineRead(const QString &line);
    /// The user has pressed Ctrl-D in an empty line, or the terminal is gone.
    void ended();

private:
    Q_DISABLE_COPY(Prompt)

    static Prompt &of(editline *editor);
    static int nextCharacter(editline *editor, wchar_t *character);
    static unsigned char enter(editline *editor, std::wint_t key);
    static unsigned char complete(editline *editor, std::wint_t key);
    template <typename... Values>
    void set(int what, Values... values);
    void read();
    void takeKey(const QByteArray &key);
    void list(const QStringList &words) const;
    void erase();
    int columns() const;
    void end();

    const Complete m_complete;
    editline *const m_editor;
    historyW *const m_history;
    QSocketNotifier *const m_notifier;
    QByteArray m_typed; ///< The beginning of a key.
    std::wstring m_key; ///< What the editor has still to read of a key.
    std::optional<QString> m_entered;
    bool m_isShown = true;
};
