#pragma once

#include <QChar>
#include <QStringView>

#include <optional>

// The column layouts that descriptionRow builds, and the fill characters
// the documents choose between.
namespace RowLayout {

enum Layout {
    qdpt,           // quantity, description, unit price, total
    qxdpt,          // the same with " x " after the quantity
    qxdtDoubleLine, // quantity x price on one line, description and total below
    qxd,            // quantity x description
    qd,             // quantity and description
    dateAmountType, // a statement's date, description and amount
};

// The layout a caller names ("qdpt", "date-amount-type", ...); none for
// any other text.
std::optional<Layout> layoutNamed(QStringView name);

inline constexpr QChar blank{u' '};
// Leads the eye from a description to its amount.
inline constexpr QChar dot{u'.'};

} // namespace RowLayout
