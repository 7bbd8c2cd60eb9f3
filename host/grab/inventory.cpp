// The cameras on the buses, read from what the plug-in logs about them.
#include "grab/inventory.h"

#include <array>
#include <charconv>
#include <cstdio>

namespace kxhost {
namespace {

/// The rest of `line` behind `start`, when it starts so; else a null view.
std::string_view after(std::string_view line, std::string_view start)
{
    return line.starts_with(start) ? line.substr(start.size()) : std::string_view();
}

unsigned leadingNumber(std::string_view text)
{
    unsigned number = 0;
    std::from_chars(text.data(), text.data() + text.size(), number);
    return number;
}

/// The model in: 0. Check configured Model "(none)" with "NAME" (result N)
void readModel(std::string_view text, std::vector<InventoryCamera>& cameras)
{
    constexpr std::string_view kBefore = "\" with \"";
    const std::size_t start = text.find(kBefore);
    const std::size_t end = text.rfind("\" (result ");
    if (start == std::string_view::npos || end == std::string_view::npos) {
        return;
    }
    const unsigned index = leadingNumber(text);
    const std::size_t name = start + kBefore.size();
    for (InventoryCamera& camera : cameras) {
        if (camera.index == index) {
            camera.model = text.substr(name, end - name);
        }
    }
}

void readLine(std::string_view line, std::vector<InventoryCamera>& cameras)
{
    constexpr std::string_view kTag = "[KX_PG_MAIN:i]: ";
    line = after(line, kTag);
    if (const auto heading = after(line, "== ");
        heading.ends_with("Camera Device Information ==")) {
        cameras.push_back({leadingNumber(heading), "", "", ""});
    } else if (const auto check = after(line, "Loop "); !check.empty()) {
        readModel(check, cameras);
    } else if (cameras.empty()) {
        return;
    } else if (const auto serial = after(line, "\tDeviceSerial     : "); !serial.empty()) {
        cameras.back().serial = serial;
    } else if (const auto kind = after(line, "\tInterface        : "); !kind.empty()) {
        cameras.back().interface = kind;
    }
}

} // namespace

std::vector<InventoryCamera> readInventory(std::string_view log)
{
    std::vector<InventoryCamera> cameras;
    while (!log.empty()) {
        const std::size_t end = log.find('\n');
        readLine(log.substr(0, end), cameras);
        log.remove_prefix(end == std::string_view::npos ? log.size() : end + 1);
    }
    return cameras;
}

std::string inventoryText(const std::vector<InventoryCamera>& cameras)
{
    std::string text;
    std::array<char, 256> line{};
    const auto add = [&](const char* index, const std::string& serial, const std::string& interface,
                         const std::string& model) {
        std::snprintf(line.data(), line.size(), "%-6s %-12s %-14s %s\n", index, serial.c_str(),
                      interface.c_str(), model.c_str());
        text += line.data();
    };
    add("index", "serial", "interface", "model");
    for (const InventoryCamera& camera : cameras) {
        add(std::to_string(camera.index).c_str(), camera.serial, camera.interface,
            camera.model.empty() ? "(in use or not answering)" : camera.model);
    }
    return text;
}

} // namespace kxhost
