#pragma once

#include <QChar>
#include <QStringView>

// The names of the column layouts that descriptionRow builds, and the fill
// characters the documents choose between.
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

} // namespace RowLayout
