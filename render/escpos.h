#pragma once

#include <QByteArray>
#include <QByteArrayView>

#include <span>

// The ESC/POS commands the thermal printers of kitchens and counters take,
// shared by the device that writes them and the preview that reads them.
namespace EscPos {

inline constexpr char esc = '\x1b';
inline constexpr char gs = '\x1d';

// ESC @: the printer's power-on state (left, normal size, not bold, page 0).
inline constexpr QByteArrayView initialize("\x1b@", 2);
// ESC p 0 25 250: a pulse of 50 ms on and 500 ms off on the drawer's pin 2.
inline constexpr QByteArrayView drawerPulse("\x1bp\x00\x19\xfa", 5);
// GS V 1: a partial cut.
inline constexpr QByteArrayView partialCut("\x1dV\x01", 3);

// A command of a prefix, a letter and one parameter byte.
inline QByteArray withParameter(char prefix, char letter, int parameter)
{
    const char bytes[] = {prefix, letter, char(parameter)};
    return QByteArray(bytes, 3);
}
// ESC E n, GS ! n, ESC a n, ESC t n, ESC d n.
inline QByteArray bold(bool on) { return withParameter(esc, 'E', on); }
inline QByteArray doubleHeight(bool on) { return withParameter(gs, '!', on ? 0x01 : 0x00); }
inline QByteArray centred(bool on) { return withParameter(esc, 'a', on); }
inline QByteArray selectCodePage(int number) { return withParameter(esc, 't', number); }
inline QByteArray feedLines(int count) { return withParameter(esc, 'd', count); }

// A code page and the number ESC t selects it by on the usual table.
struct CodePageNumber
{
    int number;
    const char* name; // as Qt's encoders know it
};

// The pages of the usual table that Qt can encode, by number.
std::span<const CodePageNumber> codePageNumbers();
// The number of a code page by any of its names, or -1 when the table
// lacks it (ISO-8859-15, UTF-8, ...).
int codePageNumber(const QByteArray& name);
// The code page of a number, or empty.
QByteArray codePageOfNumber(int number);

} // namespace EscPos
