// SPDX-FileCopyrightText: The Varnel authors
// SPDX-License-Identifier: GPL-3.0-or-later

#pragma once

#include "ui/tooltip.h"

#include <QListWidgetItem>

#include <functional>
#include <memory>
#include <vector>

namespace Varnel::Internal {

/**
 * A row that shows an example by its name. The name and the tool tip's texts may be of any length and
 * content.
 *
 * The tool tip is made when it is wanted: markers in its texts can make it as long as the product of their
 * lengths, and of some thousand rows few are ever looked at.
 */
class ExampleRow final : public QListWidgetItem
{
public:
    using ToolTipMaker = std::function<ToolTip()>;

    explicit ExampleRow(const QString &name, ToolTipMaker toolTip = {});

    [[nodiscard]] QVariant data(int role) const override;
    /** The tool tip to show, empty if the row has none. */
    [[nodiscard]] QString shownToolTip() const;

private:
    const ToolTipMaker m_toolTip;
};

using ExampleRows = std::vector<std::unique_ptr<ExampleRow>>;

/** Makes a list show its example rows, their tool tips included, in a bounded time and as plain text. */
void setUpExampleRows(QListWidget *list);

} // namespace Varnel::Internal
