// A question or a message to the user, as a value.
//
// Queue: the main queue calls the handlers. Who owns: whoever shows it; a handler keeps no screen
// and no controller alive. Absent: an action whose handler is null only closes the alert.
#pragma once

#include <functional>
#include <string>
#include <vector>

namespace tavrion {

/// The numbers are the platform's own.
enum class UIAlertActionStyle { normal = 0, cancel = 1, destructive = 2 };

struct AlertAction {
    std::string title;
    UIAlertActionStyle style = UIAlertActionStyle::normal;
    std::function<void()> handler = nullptr;
};

struct Alert {
    std::string title;
    std::string message;
    /// In the order in which they stand.
    std::vector<AlertAction> actions;
};

}  // namespace tavrion
