// What must hold for the ledger of any grab, however it went.
#ifndef KX_TEST_LEDGER_CHECK_H
#define KX_TEST_LEDGER_CHECK_H

#include <nlohmann/json.hpp>

#include <vector>

namespace kxtest {

/// Checks that the ledger of a summary balances, that it agrees with what was counted elsewhere,
/// and that it and the metadata together account for every value of the camera's counter.
void expectLedger(const nlohmann::json& summary, const std::vector<nlohmann::json>& frames);

/// How many frames the ledger says a cause took.
std::uint64_t lostBy(const nlohmann::json& summary, const char* cause);

} // namespace kxtest

#endif
