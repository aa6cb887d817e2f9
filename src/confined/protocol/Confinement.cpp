#include "confined/protocol/Confinement.h"

#include <vector>

namespace vellumine::confined {

std::string confinementText(const std::optional<Confinement>& confinement)
{
    if (!confinement) {
        return "Pictures are decoded in the program itself: the decoder is missing.";
    }
    std::vector<std::string> inForce;
    if (confinement->systemCallFilter) {
        inForce.emplace_back("a system call filter");
    }
    if (confinement->landlockVersion > 0) {
        inForce.emplace_back("Landlock " + std::to_string(confinement->landlockVersion));
    }
    if (confinement->noNewPrivileges) {
        inForce.emplace_back("no new privileges");
    }
    if (confinement->memoryLimit) {
        inForce.emplace_back("a memory limit");
    }
    if (confinement->timeLimit) {
        inForce.emplace_back("a processor time limit");
    }
    std::string text = "Pictures are decoded in a process of their own";
    for (std::size_t i = 0; i < inForce.size(); ++i) {
        text += (i == 0 ? ", confined by " : i + 1 < inForce.size() ? ", " : " and ") + inForce[i];
    }
    return text + '.';
}

} // namespace vellumine::confined
