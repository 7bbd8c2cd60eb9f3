// What the help of kxhost says below the options of each verb, and how wide it is.
#include "command/command_help.h"

#include <sstream>

namespace kxhost {
namespace {

constexpr std::size_t kNameWidth = 28;
constexpr std::size_t kWidth = 100;

constexpr const char* kGeneralFooter = R"(Examples:
  kxhost grab --simulate --frames 10 --output pictures
      Ten frames of a simulated camera, as PNG files with their metadata.
  kxhost list
      The cameras on the buses of this computer.
  kxhost grab -c camera.toml --set output.format=tiff
      A configured grab, with another picture format, until Ctrl-C.
  kxhost grab -c camera.toml --frames 1000 --output pictures --report report.html
      The same with a page for the browser that tells how it went, frame by frame.
  kxhost grab -c camera.toml --live 8080
      The same, watched and steered at http://127.0.0.1:8080/ in a browser.
  kxhost check -c camera.toml
      What a configuration says, key by key, and its mistakes.
  kxhost doctor
      What this computer lacks for cameras, and the commands that mend it.
  kxhost clock -c camera.toml
      How fast the camera's clock runs, and what to write into the configuration for it.
  kxhost ctl 1234 reload
      Lets the grab with the process id 1234 read its configuration again.

"kxhost grab --help" has the options of grab, and so on. "man kxhost" tells all of it, "man
kxhost.toml" has the keys of a configuration.

Exit codes:
   0  fine
   1  a defect of kxhost itself
   2  the command line
   3  the configuration
   4  no camera in time
   5  the camera or its library failed, or the camera was lost
   6  frames, or what is reported, could not be written
   7  more losses than grab.max_losses
   8  the plug-in cannot be loaded
   9  the camera library cannot be loaded
  10  the camera library is of another release than the plug-in
  11  ctl: no grab has that process id
  12  doctor: something has to be mended
  13  doctor: something could not be found out, nothing else is amiss
  14  clock: the frames do not tell the camera's clock
  15  the address of the live page cannot be had
130 and 143 stand for a second Ctrl-C or SIGTERM, which does not wait for frames to be written.
)";

constexpr const char* kGrabFooter =
    R"(A first Ctrl-C (or SIGTERM) finishes: every frame accepted so far is written. A second one ends at
once. SIGHUP reads the configuration again, SIGUSR1 computes a look-up table from the picture,
SIGUSR2 does so with 12 bits; "kxhost ctl" sends them.

Examples:
  kxhost grab --simulate --frames 10 --output pictures
  kxhost grab -c camera.toml --set output.format=tiff
  kxhost grab -c camera.toml --frames 1000 --output pictures --report report.html

The keys of a configuration: "kxhost check" or "man kxhost.toml". Exit codes: "kxhost --help".
)";

constexpr const char* kListFooter = R"(Examples:
  kxhost list
  kxhost list --simulate

Exit codes: 0 fine, 2 usage, 4 there is no camera, 6 this could not be printed, 8 the plug-in cannot
be loaded, 9 nor the camera library, 10 that is of another release.
)";

constexpr const char* kCheckFooter =
    R"(Prints every key, also without a configuration: what is set, and as a comment what holds otherwise.

Examples:
  kxhost check
  kxhost check -c camera.toml --set acquisition.gain=3

Exit codes: 0 fine, 2 usage, 3 the configuration has mistakes, 6 this could not be printed.
)";

constexpr const char* kVersionFooter =
    R"(Exit codes: 0 fine, 2 usage, 6 this could not be printed, 8 the plug-in cannot be loaded, 9 nor the
camera library that was named, 10 that is of another release.
)";

constexpr const char* kClockFooter =
    R"(Runs the camera as a grab would, writes no pictures, and compares the time that the camera gives
each frame with its arrival: how fast the camera's clock runs and how well that is known, where
either clock jumped, whether the camera's wanders, and the value of timestamps.clock_correction for
time stamps that follow it. A minute will do; the longer, the better. Ctrl-C ends it early, with a
report on what there is. Do not change the camera's exposure meanwhile.

Examples:
  kxhost clock -c camera.toml
  kxhost clock -c camera.toml --seconds 600 --json --quiet > clock.json
  kxhost clock --simulate --seconds 5

Exit codes are those of a grab, and 14: too few frames, or the camera embeds no time stamps.
)";

constexpr const char* kCtlFooter = R"(  finish   write every frame accepted so far and end (SIGTERM)
  reload   read the configuration again and take it over as a whole (SIGHUP)
  lut      compute a look-up table from the next picture and load it (SIGUSR1)
  lut12    the same from a picture of 12 bits, and back to 8 (SIGUSR2)

Exit codes: 0 the signal is sent, 2 usage, 11 no grab has that process id, or it belongs to somebody
else.
)";

constexpr const char* kDoctorFooter =
    R"(Nothing is changed: a line that begins with "$" is a command for you to run. Verdicts:
  ok       as it should be
  warn     some cameras or some uses want more
  fail     has to be mended
  skip     does not apply to this computer or these cameras
  unknown  could not be found out

Examples:
  kxhost doctor
      Goes by the USB cameras that are plugged in.
  kxhost doctor -c camera.toml
      Goes by the frame size, the buffers and the packet size of a configuration.
  kxhost doctor --gige --json
      A computer for GigE cameras, told to a program.

Exit codes: 0 nothing has to be mended, 2 usage, 3 configuration, 6 this could not be printed, 12
something has to be mended, 13 something could not be found out, and nothing else is amiss.
)";

/// The text in lines of at most `width` letters, broken between words.
std::string wrapped(const std::string& text, std::size_t width)
{
    std::istringstream words(text);
    std::string lines;
    std::size_t column = 0;
    for (std::string word; words >> word;) {
        const bool fits = column + 1 + word.size() <= width;
        if (column > 0) {
            lines += fits ? ' ' : '\n';
        }
        column = (column > 0 && fits ? column + 1 : 0) + word.size();
        lines += word;
    }
    return lines;
}

} // namespace

const char* generalFooter()
{
    return kGeneralFooter;
}

const char* footerOf(Verb verb)
{
    switch (verb) {
    case Verb::kGrab:
        return kGrabFooter;
    case Verb::kList:
        return kListFooter;
    case Verb::kCheck:
        return kCheckFooter;
    case Verb::kVersion:
        return kVersionFooter;
    case Verb::kClock:
        return kClockFooter;
    case Verb::kCtl:
        return kCtlFooter;
    case Verb::kDoctor:
        return kDoctorFooter;
    }
    return "";
}

HelpFormatter::HelpFormatter()
{
    column_width(kNameWidth);
}

std::string HelpFormatter::make_option(const CLI::Option* option, bool isPositional) const
{
    std::stringstream out;
    CLI::detail::format_help(out, make_option_name(option, isPositional) + make_option_opts(option),
                             wrapped(make_option_desc(option), kWidth - kNameWidth), kNameWidth);
    return out.str();
}

std::string HelpFormatter::make_footer(const CLI::App* app) const
{
    return app->get_footer();
}

} // namespace kxhost
