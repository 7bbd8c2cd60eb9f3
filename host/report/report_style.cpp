// How the report looks: its style sheet.
#include "report/report_style.h"

namespace kxhost {

const char* const kReportStyle = R"(
:root {
  --paper: #ffffff; --ink: #14181d; --soft: #59636e; --rule: #d8dee4; --ground: #f4f6f8;
  --good: #187a43; --fair: #8f5a00; --bad: #b3261e;
  --line: #1f5fb0; --range: #1f5fb033; --away: #f1e9da; --flag: #6b3fa0;
  --red: #cf3a30; --green: #238636; --blue: #2f62d0; --grey: #59636e;
}
@media (prefers-color-scheme: dark) {
  :root {
    --paper: #0f1317; --ink: #e4e9ee; --soft: #97a3af; --rule: #2c343c; --ground: #181d23;
    --good: #56c785; --fair: #e0a63c; --bad: #ff7b70;
    --line: #6fb0ff; --range: #6fb0ff3d; --away: #2e2613; --flag: #c39bf2;
    --red: #ff7468; --green: #56c768; --blue: #7da6ff; --grey: #b4bec8;
  }
}
* { box-sizing: border-box; }
body {
  margin: 0 auto; padding: 1.5rem clamp(1rem, 4vw, 2.5rem) 3rem; max-width: 66rem;
  background: var(--paper); color: var(--ink);
  font: 1rem/1.5 system-ui, "Segoe UI", Roboto, "Helvetica Neue", sans-serif;
}
h1 { margin: 0; font-size: clamp(1.5rem, 1.1rem + 2vw, 2.25rem); line-height: 1.2; letter-spacing: -0.01em; }
h2 { margin: 2.75rem 0 .5rem; padding-top: .75rem; border-top: 1px solid var(--rule); font-size: 1.25rem; }
h3 { margin: 1.5rem 0 .5rem; font-size: 1rem; }
p { margin: .5rem 0; max-width: 46rem; }
header { border-left: .375rem solid var(--mood); padding-left: 1rem; }
header.good { --mood: var(--good); } header.fair { --mood: var(--fair); } header.bad { --mood: var(--bad); }
header h1 { color: var(--mood); }
.kicker { margin: 0; color: var(--soft); font-size: .8125rem; letter-spacing: .08em; text-transform: uppercase; }
.lead { font-size: 1.0625rem; }
.about, figcaption { color: var(--soft); font-size: .9375rem; }
figcaption strong, figcaption b { color: var(--ink); }
.none { color: var(--soft); font-style: italic; }
.facts { display: grid; grid-template-columns: repeat(auto-fill, minmax(15rem, 1fr)); gap: .625rem 1.5rem; margin: 1.25rem 0 0; }
.facts div:last-child { grid-column: 1 / -1; }
.facts dt { color: var(--soft); font-size: .8125rem; }
.facts dd { margin: 0; overflow-wrap: anywhere; }
code, pre { font: .875em/1.45 ui-monospace, "SF Mono", Menlo, Consolas, monospace; overflow-wrap: anywhere; }
pre { padding: .75rem 1rem; background: var(--ground); overflow-x: auto; white-space: pre; }
.sheet { display: grid; grid-template-columns: repeat(auto-fill, minmax(min(9rem, 45%), 1fr)); gap: .75rem; margin-top: .75rem; }
.sheet figure { margin: 0; }
.sheet img { display: block; width: 100%; height: auto; background: var(--ground); }
.sheet figcaption { font-size: .8125rem; font-variant-numeric: tabular-nums; }
main > section > figure { margin: 1.25rem 0 2.25rem; } .pair figure { margin: 1.25rem 0; }
.pair { display: grid; grid-template-columns: repeat(auto-fit, minmax(min(26rem, 100%), 1fr)); gap: 0 2rem; }
.pair figure { min-width: 0; }
svg.plot { display: block; overflow: visible; width: calc(100% - 4.5rem); margin: 2.25rem 1rem 2rem 3.5rem; }
svg text { fill: var(--soft); font-size: .75rem; font-variant-numeric: tabular-nums; }
svg text.y, svg text.unit { text-anchor: end; } svg text.y { dominant-baseline: central; }
svg text.x { text-anchor: middle; }
.grid line { stroke: var(--rule); }
.middle, .curve { fill: none; stroke: var(--line); stroke-width: 1.5; stroke-linejoin: round; vector-effect: non-scaling-stroke; }
.middle { stroke-linecap: round; }
.range { fill: var(--range); stroke: var(--range); vector-effect: non-scaling-stroke; }
.away { fill: var(--away); stroke: var(--fair); vector-effect: non-scaling-stroke; stroke-dasharray: 3 3; }
.loss { fill: var(--bad); }
.flag line { stroke: var(--flag); stroke-dasharray: 4 3; }
.flag text { fill: var(--flag); text-anchor: middle; font-weight: 600; }
.curve.red { stroke: var(--red); } .curve.green { stroke: var(--green); } .curve.blue { stroke: var(--blue); } .curve.grey { stroke: var(--grey); }
.area { opacity: .18; }
.area.red { fill: var(--red); } .area.green { fill: var(--green); } .area.blue { fill: var(--blue); } .area.grey { fill: var(--grey); opacity: .3; }
.key { display: inline-block; width: .625rem; height: .625rem; margin-right: .5rem; }
.key.red { background: var(--red); } .key.green { background: var(--green); } .key.blue { background: var(--blue); } .key.grey { background: var(--grey); }
.wide { overflow-x: auto; margin: .75rem 0; }
table { border-collapse: collapse; font-size: .9375rem; font-variant-numeric: tabular-nums; }
th, td { padding: .3125rem 1.25rem .3125rem 0; border-bottom: 1px solid var(--rule); text-align: left; vertical-align: top; font-weight: normal; }
thead th { color: var(--soft); font-size: .8125rem; vertical-align: bottom; }
tbody th { white-space: nowrap; }
.numbers td { white-space: nowrap; }
.shares { display: flex; height: .875rem; margin: 1rem 0; background: var(--ground); }
.shares span { flex-basis: 0; min-width: 2px; }
.delivered { background: var(--good); } .own { background: var(--soft); } .missed { background: var(--bad); border-left: 1px solid var(--paper); }
details { margin: .75rem 0; }
summary { cursor: pointer; color: var(--line); }
footer { margin-top: 3rem; padding-top: .75rem; border-top: 1px solid var(--rule); color: var(--soft); font-size: .8125rem; }
@media print {
  @page { margin: 15mm; }
  body { max-width: none; padding: 0; font-size: 10pt; }
  figure, tr, .shares { break-inside: avoid; } h2, h3 { break-after: avoid; }
  .sheet { grid-template-columns: repeat(6, 1fr); }
  * { print-color-adjust: exact; -webkit-print-color-adjust: exact; }
}
)";

} // namespace kxhost
