// SPDX-FileCopyrightText: 2026 The Parley developers
// SPDX-License-Identifier: BSD-3-Clause

#include "prompt.h"

#include <QSocketNotifier>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <utility>

#include <histedit.h>
#include <unistd.h>

namespace {

constexpr int longestHistory = 1000;
constexpr int usualColumns = 80;
constexpr int promptWidth = 2;
constexpr char escape = '\x1b';
constexpr char controlX = '\x18';
const QLatin1Char controlD('\x04');

wchar_t *promptText(EditLine *)
{
    static std::array<wchar_t, promptWidth + 1> text{L'>', L' ', L'\0'};
    return text.data();
}

/// A control character is shown as two.
int widthOf(wchar_t character)
{
    const int width = wcwidth(character);
    return width < 0 ? 2 : width;
}

int lengthOfCharacter(char first)
{
    const auto byte = static_cast<unsigned char>(first);
    return byte >= 0xf0 ? 4 : byte >= 0xe0 ? 3 : byte >= 0xc0 ? 2 : 1;
}

/// Returns the length of the control sequence that \a typed begins with, behind its two first
/// characters and with its last one, or 0 if that is not there yet.
int lengthOfSequence(const QByteArray &typed)
{
    const auto *const end = std::find_if(typed.cbegin() + 2, typed.cend(),
                                         [](char one) { return one >= '@' && one <= '~'; });
    return end == typed.cend() ? 0 : static_cast<int>(end - typed.cbegin()) + 1;
}

/// Returns the length of the key that \a typed begins with, or 0 if it is not complete yet. The
/// editor must not begin to read a key that is not, because it would wait for the rest.
int lengthOfKey(const QByteArray &typed)
{
    if (typed.isEmpty())
        return 0;
    int length = lengthOfCharacter(typed.at(0));
    if (typed.startsWith("\x1b["))
        return lengthOfSequence(typed);
    if (typed.startsWith("\x1bO"))
        length = 3;
    else if (typed.at(0) == escape || typed.at(0) == controlX)
        length = 2;
    return length <= typed.size() ? length : 0;
}

QString textOf(const wchar_t *begin, const wchar_t *end)
{
    return QString::fromWCharArray(begin, static_cast<int>(end - begin));
}

QString commonBeginning(const QStringList &words)
{
    QString beginning = words.constFirst();
    for (const QString &word : words) {
        while (!word.startsWith(beginning))
            beginning.chop(1);
    }
    return beginning;
}

} // namespace

bool Prompt::isPossible()
{
    const QByteArray kind = qgetenv("TERM");
    return isatty(STDIN_FILENO) == 1 && isatty(STDOUT_FILENO) == 1 && !kind.isEmpty()
        && kind != "dumb";
}

Prompt::Prompt(Complete complete, QObject *parent)
    : QObject(parent)
    , m_complete(std::move(complete))
    , m_editor(el_init("parley-handset", stdin, stdout, stderr))
    , m_history(history_winit())
    , m_notifier(new QSocketNotifier(STDIN_FILENO, QSocketNotifier::Read, this))
{
    HistEventW event;
    history_w(m_history, &event, H_SETSIZE, longestHistory);
    history_w(m_history, &event, H_SETUNIQUE, 1);
    set(EL_CLIENTDATA, this);
    set(EL_PROMPT, promptText);
    set(EL_GETCFN, &Prompt::nextCharacter);
    set(EL_HIST, history_w, m_history);
    set(EL_EDITOR, L"emacs");
    set(EL_ADDFN, L"enter", L"Enters the line", &Prompt::enter);
    set(EL_ADDFN, L"complete", L"Completes the last word", &Prompt::complete);
    const wchar_t *const end = nullptr;
    for (const auto &[key, function] :
         {std::pair(L"^M", L"enter"), std::pair(L"^J", L"enter"), std::pair(L"^I", L"complete"),
          std::pair(L"^R", L"ed-search-prev-history"),
          // They would wait for another key.
          std::pair(L"^V", L"ed-unassigned"), std::pair(L"^Q", L"ed-unassigned")})
        set(EL_BIND, key, function, end);
    set(EL_UNBUFFERED, 1);
    connect(m_notifier, &QSocketNotifier::activated, this, &Prompt::read);
}

Prompt::~Prompt()
{
    end();
    el_end(m_editor);
    history_wend(m_history);
}

void Prompt::hide()
{
    if (!m_isShown)
        return;
    erase();
    m_isShown = false;
}

void Prompt::show()
{
    if (m_isShown || !m_notifier->isEnabled())
        return;
    m_isShown = true;
    set(EL_REFRESH);
}

void Prompt::redraw()
{
    hide();
    set(EL_PREP_TERM, 0);
    set(EL_PREP_TERM, 1);
    el_resize(m_editor);
    show();
}

Prompt &Prompt::of(EditLine *editor)
{
    void *data = nullptr;
    el_wget(editor, EL_CLIENTDATA, &data);
    return *static_cast<Prompt *>(data);
}

int Prompt::nextCharacter(EditLine *editor, wchar_t *character)
{
    std::wstring &key = of(editor).m_key;
    if (key.empty())
        return 0;
    *character = key.front();
    key.erase(0, 1);
    return 1;
}

/// Has the editor begin a new line.
unsigned char Prompt::enter(EditLine *editor, std::wint_t)
{
    const LineInfoW *line = el_wline(editor);
    Prompt &prompt = of(editor);
    prompt.m_entered = textOf(line->buffer, line->lastchar);
    prompt.erase();
    return CC_FATAL;
}

unsigned char Prompt::complete(EditLine *editor, std::wint_t)
{
    const LineInfoW *line = el_wline(editor);
    const QString text = textOf(line->buffer, line->cursor);
    Prompt &prompt = of(editor);
    const QStringList words = prompt.m_complete(text);
    if (words.isEmpty())
        return CC_ERROR;
    const auto begun = text.size() - 1 - text.lastIndexOf(QLatin1Char(' '));
    QString missing = commonBeginning(words).mid(begun);
    if (words.size() == 1)
        missing += QLatin1Char(' ');
    if (!missing.isEmpty()) {
        el_winsertstr(editor, missing.toStdWString().c_str());
        return CC_REFRESH;
    }
    prompt.hide();
    prompt.list(words);
    prompt.show();
    return CC_NORM;
}

template <typename... Values>
void Prompt::set(int what, Values... values)
{
    el_wset(m_editor, what, values...);
}

void Prompt::read()
{
    std::array<char, 4096> buffer{};
    const ssize_t size = ::read(STDIN_FILENO, buffer.data(), buffer.size());
    if (size < 0 && (errno == EINTR || errno == EAGAIN))
        return;
    if (size <= 0) {
        end();
        Q_EMIT ended();
        return;
    }
    m_typed.append(buffer.data(), static_cast<int>(size));
    for (int length = lengthOfKey(m_typed); length > 0 && m_notifier->isEnabled();
         length = lengthOfKey(m_typed)) {
        const QByteArray key = m_typed.left(length);
        m_typed.remove(0, length);
        takeKey(key);
    }
}

void Prompt::takeKey(const QByteArray &key)
{
    m_key = QString::fromUtf8(key).toStdWString();
    int length = 0;
    const wchar_t *line = el_wgets(m_editor, &length);
    if (const auto entered = std::exchange(m_entered, std::nullopt)) {
        HistEventW event;
        if (!entered->trimmed().isEmpty())
            history_w(m_history, &event, H_ENTER, entered->toStdWString().c_str());
        Q_EMIT lineRead(*entered);
    } else if (line && textOf(line, line + std::max(0, length)) == controlD) {
        end();
        Q_EMIT ended();
    }
}

/// Prints \a words in columns, as a shell does.
void Prompt::list(const QStringList &words) const
{
    int width = 0;
    for (const QString &word : words)
        width = std::max(width, static_cast<int>(word.size()) + 2);
    const int inARow = std::max(1, columns() / width);
    QString text;
    for (int i = 0; i < words.size(); ++i) {
        const bool isLast = (i + 1) % inARow == 0 || i + 1 == words.size();
        text += isLast ? words.at(i) + QLatin1Char('\n') : words.at(i).leftJustified(width);
    }
    std::fputs(qUtf8Printable(text), stdout);
    std::fflush(stdout);
}

/// Clears the rows of the line, and leaves the cursor in the first column of the first of them.
void Prompt::erase()
{
    const LineInfoW *line = el_wline(m_editor);
    int width = promptWidth;
    for (const wchar_t *at = line->buffer; at != line->cursor; ++at)
        width += widthOf(*at);
    if (const int rowsAbove = width / columns(); rowsAbove > 0)
        std::printf("\x1b[%dA", rowsAbove);
    std::fputs("\r\x1b[J", stdout);
    std::fflush(stdout);
}

int Prompt::columns() const
{
    int columns = usualColumns;
    char name[] = "co";
    el_get(m_editor, EL_GETTC, name, &columns);
    return std::max(1, columns);
}

void Prompt::end()
{
    if (!m_notifier->isEnabled())
        return;
    hide();
    m_notifier->setEnabled(false);
    set(EL_UNBUFFERED, 0);
}
