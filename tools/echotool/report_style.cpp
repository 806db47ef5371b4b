#include "tools/echotool/report_style.h"

namespace tw::echotool {

std::string_view ReportStyle() {
  return R"(
:root { color-scheme: light dark; --ink: #16232d; --soft: #5b6b77; --line: #d6dee4; --page: #f4f7f9; --card: #fff;
  --first: #0b6fb8; --second: #c2571a; --mark: #d81b60; --warn: #a33b00; }
@media (prefers-color-scheme: dark) { :root { --ink: #e6edf2; --soft: #9fb0bc; --line: #2c3b46; --page: #0e161c;
  --card: #16212a; --first: #5cb3ee; --second: #f0975c; --mark: #ff6fa5; --warn: #ffb08a; } }
* { box-sizing: border-box; }
body { margin: 0; background: var(--page); color: var(--ink); font: 15px/1.45 "Segoe UI", "Open Sans", Roboto,
  "Helvetica Neue", Arial, sans-serif; font-variant-numeric: tabular-nums; }
main { max-width: 1240px; margin: 0 auto; padding: 28px 24px 40px; }
header h1 { margin: 0; font-size: 1.5rem; line-height: 1.25; overflow-wrap: anywhere; }
header p { margin: 4px 0 0; color: var(--soft); }
h2 { margin: 0 0 10px; font-size: 1rem; }
small, .note { color: var(--soft); font-size: .82rem; font-weight: 400; }
a { color: var(--first); }
.tiles { display: grid; grid-template-columns: repeat(4, 1fr); gap: 12px; margin: 20px 0; padding: 0; }
@media (min-width: 1150px) { .tiles { grid-template-columns: repeat(8, auto); } }
.note { margin: 6px 0 0 54px; }
.tiles div { background: var(--card); border: 1px solid var(--line); border-radius: 8px; padding: 10px 14px; }
.tiles dt { color: var(--soft); font-size: .8rem; }
.tiles dd { margin: 2px 0 0; font-size: 1.15rem; font-weight: 600; }
.tiles .warn dd, td.warn { color: var(--warn); }
.card { background: var(--card); border: 1px solid var(--line); border-radius: 8px; margin: 0 0 16px; padding: 14px 18px 16px;
  break-inside: avoid; }
.pair { display: grid; grid-template-columns: repeat(auto-fit, minmax(340px, 1fr)); gap: 0 16px; align-items: start; }
.tables { columns: 2 340px; column-gap: 16px; }
.plot { display: grid; grid-template-columns: 54px 1fr; }
.y { position: relative; font-size: .78rem; color: var(--soft); }
.y span { position: absolute; right: 8px; transform: translateY(-50%); white-space: nowrap; }
.box { position: relative; height: 170px; border: 1px solid var(--line); overflow: hidden; }
.echo .box { height: 340px; background: #000; }
.box img, .box svg { position: absolute; inset: 0; width: 100%; height: 100%; display: block; }
.box .few { image-rendering: pixelated; }
.x { grid-column: 2; display: flex; justify-content: space-between; font-size: .78rem; color: var(--soft); padding-top: 3px; }
.grid { stroke: var(--line); }
.first, .second, .marks { vector-effect: non-scaling-stroke; stroke-width: 1.3; stroke-linejoin: round; fill-opacity: .5; }
.first { stroke: var(--first); fill: var(--first); }
.second { stroke: var(--second); fill: var(--second); }
.track .first { fill: none; stroke-width: 1.8; }
.marks { fill: none; stroke: var(--mark); stroke-dasharray: 4 3; }
.echo .marks { stroke: #fff; }
.grid { fill: none; vector-effect: non-scaling-stroke; stroke-width: 1; }
.key { float: right; font-size: .8rem; color: var(--soft); font-weight: 400; }
.key i { display: inline-block; width: 16px; height: 3px; margin: 0 5px 3px 14px; vertical-align: middle; }
.key .ramp { width: 120px; height: 9px; margin: 0 6px 2px; border-radius: 2px; }
.track svg { display: block; width: 100%; height: auto; max-height: 460px; }
.track text { fill: var(--ink); font-size: 15px; }
.track .ink { stroke: var(--ink); fill: none; stroke-width: 2; }
.track .north { fill: var(--ink); }
.begin { fill: var(--card); stroke: var(--first); stroke-width: 2.5; }
.end { fill: var(--first); }
.place { fill: var(--mark); }
table { border-collapse: collapse; width: 100%; font-size: .9rem; }
th, td { text-align: left; padding: 5px 18px 5px 0; border-bottom: 1px solid var(--line); vertical-align: top; }
tr:last-child > * { border-bottom: 0; }
th { font-weight: 400; color: var(--soft); }
td.n, th.n { text-align: right; }
.scroll { overflow-x: auto; }
.list th { white-space: nowrap; }
.list td { white-space: nowrap; }
.files td:first-child { white-space: normal; overflow-wrap: anywhere; min-width: 10em; }
footer { color: var(--soft); font-size: .82rem; }
@media (max-width: 600px) { main { padding: 16px 12px 28px; } .card { padding: 12px 12px 14px; } .plot { grid-template-columns: 46px 1fr; }
  .x span:nth-child(even) { display: none; } .echo .box { height: 240px; } .box { height: 140px; } .key { float: none; display: block; }
  .tiles { grid-template-columns: 1fr 1fr; gap: 8px; } .note { margin-left: 0; } .track text { font-size: 32px; } .track circle { r: 9px; }
  .pair { grid-template-columns: 1fr; } .key i:first-child { margin-left: 0; } }
@page { size: A4; margin: 13mm; }
@media print { :root { color-scheme: light; --ink: #16232d; --soft: #4c5a64; --line: #cdd6dc; --page: #fff; --card: #fff; --first: #0b6fb8;
  --second: #c2571a; --mark: #d81b60; --warn: #a33b00; }
  body { font-size: 9.5pt; print-color-adjust: exact; -webkit-print-color-adjust: exact; } main { max-width: none; padding: 0; }
  .card { margin-bottom: 9px; padding: 8px 12px 10px; } .tiles { gap: 8px; margin: 10px 0; grid-template-columns: repeat(4, 1fr); } .tiles div { padding: 6px 10px; }
  .tiles dd { font-size: 1rem; } .echo .box { height: 215px; } .box { height: 92px; } .track svg { max-height: 235px; }
  .pair .x span:nth-child(even) { display: none; }
  table { font-size: 8pt; } th, td { padding: 2px 8px 2px 0; } .track text { font-size: 24px; } h2 { margin-bottom: 5px; }
  .pair { grid-template-columns: 1fr 1fr; } .scroll { overflow: visible; } .list td { white-space: normal; }
  .long { break-inside: auto; } thead { display: table-header-group; } tr { break-inside: avoid; }
  .files { font-size: 6.5pt; } .files th { white-space: normal; vertical-align: bottom; } .files td { white-space: nowrap; }
  .files td, .files th { padding-right: 6px; } .files td:first-child { min-width: 8em; } .list :last-child { padding-right: 0; } }
)";
}

}  // namespace tw::echotool
