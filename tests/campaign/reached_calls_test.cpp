// Every operation of the SDK that the plug-in's sources name is made in some reference session:
// what no session reaches, no campaign tries.
#include "campaign_run.h"
#include "plugin_test.h"

#include <filesystem>
#include <fstream>
#include <iterator>
#include <regex>
#include <set>
#include <string>

namespace kxcampaign {

namespace {

std::string textOf(const std::filesystem::path& path)
{
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

/// What the first group of `pattern` finds in the files of a folder with this ending.
std::set<std::string> namesIn(const std::string& folder, const std::string& ending,
                              const std::regex& pattern)
{
    std::set<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder)) {
        if (entry.path().extension() != ending) {
            continue;
        }
        const std::string text = textOf(entry.path());
        for (std::sregex_iterator found(text.begin(), text.end(), pattern), end; found != end;
             ++found) {
            names.insert((*found)[1]);
        }
    }
    return names;
}

class ReachedCallsTest : public kxtest::PluginTest {
protected:
    ReachedCallsTest() { gKxLogLevelLib = 4; }
};

TEST_F(ReachedCallsTest, AreAllThatTheSourcesName)
{
    const std::string root = KX_SOURCE_ROOT;
    // Virtual functions of the SDK's classes; those of its errors only tell what they are.
    std::set<std::string> operations = namesIn(root + "/flycapture2/include", ".h",
                                               std::regex(R"(virtual [^;=]*?\b([A-Z]\w+)\()"));
    for (const std::string& name :
         namesIn(root + "/flycapture2/include", ".h",
                 std::regex(R"(virtual [^;=]*?\b(GetType|GetDescription|GetCause|GetLine)\()"))) {
        operations.erase(name);
    }
    ASSERT_GT(operations.size(), 80U);

    std::set<std::string> reached;
    for (const Session& session : sessions()) {
        putOnBus(session);
        for (const TracedCall& call : trace(runSession(session))) {
            reached.insert(call.operation);
        }
    }
    unsigned named = 0;
    for (const std::string& name :
         namesIn(root + "/src", ".cpp", std::regex(R"(\b([A-Z]\w+)\()"))) {
        if (operations.contains(name)) {
            ++named;
            EXPECT_TRUE(reached.contains(name))
                << name << " is called in src/, but in no session of tests/campaign/sessions.cpp";
        }
    }
    EXPECT_GT(named, 35U);
}

} // namespace

} // namespace kxcampaign
