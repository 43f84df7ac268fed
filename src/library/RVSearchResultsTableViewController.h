// All hits of one kind: the page behind "See All".
//
// Queue: the main queue; rows come from a concurrent queue of the page's own. Who owns: see
// ScreenController. Absent: a place behind the last hit leads nowhere.
#pragma once

#include <functional>
#include <memory>
#include <string>

#include "kit/FoundEntities.h"
#include "kit/ScreenController.h"
#include "library/EntityRows.h"

namespace tavrion {

struct SearchResultsPage {
    /// What was typed.
    std::string title;
    FoundEntities entities;

    /// The row but for what stands at the right: what can be shown at once.
    EntityRow beginningOfRow(std::size_t place) const;
};

class RVSearchResultsTableViewController final
    : public ScreenController<RVSearchResultsTableViewController, SearchResultsPage> {
  public:
    static std::shared_ptr<RVSearchResultsTableViewController> make(
        const FoundEntitiesRoute& route);

    /// Leads to the entity's page.
    void didSelectRow(std::size_t place);
    [[nodiscard]] ScreenRequest loadRow(std::size_t place, std::function<void(PicturedRow)> loaded);

  private:
    const std::shared_ptr<DispatchQueue> imageHandlingQueue_ =
        DispatchQueue::concurrent("imageHandlingQueue");
};

}  // namespace tavrion
