#pragma once

#include <QChar>
#include <QString>
#include <QStringView>

// The names of the column layouts that descriptionRow builds, the fill
// characters the documents choose between, and the padding rules every
// columned line is made with. Padding never cuts: a text longer than its
// column widens the line.
namespace RowLayout {

inline constexpr QStringView qdpt{u"qdpt"};
inline constexpr QStringView qxdpt{u"qxdpt"};
inline constexpr QStringView qxdtDoubleLine{u"qxdtDoubleLine"};
inline constexpr QStringView qxd{u"qxd"};
inline constexpr QStringView qd{u"qd"};
inline constexpr QStringView dateAmountType{u"date-amount-type"};

inline constexpr QChar blank{u' '};
// Leads the eye from a description to its amount.
inline constexpr QChar dot{u'.'};

// Right-justified: `fill` in front of the text up to `width`, appended to
// the row being built. (QString::rightJustified does the same for a text
// on its own.)
void appendRight(QString& row, QStringView text, int width, QChar fill = blank);
// Left-justified: `fill` after the text up to `width`.
void appendLeft(QString& row, QStringView text, int width, QChar fill = blank);

} // namespace RowLayout
