#include "writers/HtmlPage.h"

#include "writers/Text.h"

namespace host {

namespace {

constexpr const char* STYLE = R"css(
:root{color-scheme:light dark;--page:#f5f7fa;--card:#fff;--ink:#18202c;--dim:#5d6878;--line:#e2e7ee;--head:#f0f3f7;
--accent:#2563eb;--shadow:0 1px 2px #0f172a14,0 4px 16px #0f172a0d;
--k0:#3b82f6;--k1:#f59e0b;--k2:#10b981;--k3:#8b5cf6;--k4:#ec4899;--k5:#14b8a6;--k6:#ef4444;--k7:#84cc16;
--k8:#0ea5e9;--k9:#f97316;--k10:#a855f7;--k11:#94a3b8}
@media (prefers-color-scheme:dark){:root{--page:#0d1117;--card:#161c25;--ink:#e5e9f0;--dim:#97a3b4;--line:#2a3341;
--head:#1c2430;--accent:#7aa7ff;--shadow:0 1px 2px #0006}}
@media print{:root{color-scheme:light;--page:#fff;--card:#fff;--ink:#000;--dim:#444;--line:#ccc;--head:#f2f2f2;
--accent:#1d4ed8;--shadow:none}}
*{box-sizing:border-box}
html{-webkit-text-size-adjust:100%}
body{margin:0;background:var(--page);color:var(--ink);font:15px/1.5 system-ui,-apple-system,"Segoe UI",Roboto,
"Helvetica Neue",Arial,"Noto Sans",sans-serif}
header,main,footer{max-width:1120px;margin:0 auto;padding:0 24px}
header{padding-top:34px}
.brand{display:flex;align-items:center;gap:10px;color:var(--dim);font-size:13px;letter-spacing:.08em;
text-transform:uppercase}
.brand svg{width:22px;height:22px}
.brand path{fill:none;stroke:var(--accent);stroke-width:2.4;stroke-linecap:round;stroke-linejoin:round}
h1{margin:6px 0 18px;font-size:30px;line-height:1.2;letter-spacing:-.02em;overflow-wrap:anywhere}
.facts{display:grid;grid-template-columns:repeat(auto-fit,minmax(150px,1fr));gap:12px;margin:0 0 20px}
.facts div{background:var(--card);border:1px solid var(--line);border-radius:10px;padding:10px 14px;
box-shadow:var(--shadow)}
.facts dt{color:var(--dim);font-size:12px}
.facts dd{margin:2px 0 0;font-weight:600;font-variant-numeric:tabular-nums;overflow-wrap:anywhere}
.head{display:grid;grid-template-columns:repeat(auto-fit,minmax(min(100%,380px),1fr));gap:12px 28px;margin:0 0 20px;
background:var(--card);border:1px solid var(--line);border-radius:12px;padding:14px 18px;box-shadow:var(--shadow)}
.head h3,summary{font-size:13px;font-weight:600}
.head details{grid-column:1/-1}
summary{cursor:pointer}
summary:hover{color:var(--accent)}
pre{margin:6px 0 0;color:var(--dim);font:12px/1.5 ui-monospace,SFMono-Regular,Menlo,Consolas,"Liberation Mono",monospace;
white-space:pre-wrap;overflow-wrap:anywhere}
.rule{display:block;height:1px;margin:5px 0;background:var(--line);overflow:hidden;color:transparent}
nav{display:flex;flex-wrap:wrap;gap:8px;margin-bottom:8px}
nav a{color:var(--accent);text-decoration:none;border:1px solid var(--line);background:var(--card);border-radius:99px;
padding:4px 14px;font-size:14px;max-width:320px;overflow:hidden;text-overflow:ellipsis;white-space:nowrap}
nav a:hover{border-color:var(--accent)}
section{margin:34px 0 0}
h2{font-size:21px;letter-spacing:-.01em;margin:0 0 12px;overflow-wrap:anywhere}
h3{font-size:15px;margin:0;overflow-wrap:anywhere}
figure{margin:0 0 16px;background:var(--card);border:1px solid var(--line);border-radius:12px;padding:16px 18px;
box-shadow:var(--shadow)}
figcaption{margin-bottom:10px}
figcaption p,.note{margin:3px 0 0;color:var(--dim);font-size:13.5px;white-space:pre-line;overflow-wrap:anywhere}
.note{margin:0 0 14px}
figure>.note{margin:10px 0 0}
svg{display:block;width:100%;height:auto}
.plot{overflow-x:auto}
@media screen and (max-width:720px){header,main,footer{padding:0 14px}.plot svg{min-width:640px}}
text{font-size:12px;fill:var(--ink);font-variant-numeric:tabular-nums}
.end{text-anchor:end}.middle{text-anchor:middle}.dim{fill:var(--dim)}
.inside{fill:#fff;font-weight:600;font-size:11.5px}
.grid{stroke:var(--line);stroke-width:1}
.area .grid{stroke:var(--card);opacity:.35}
.field{fill:var(--head);rx:6px}
.stroke{fill:none;stroke:var(--k);stroke-width:1.8;stroke-linejoin:round;stroke-linecap:round}
.band{fill:var(--k);opacity:.16;stroke:var(--k);stroke-width:.6}
.fill{fill:var(--k)}
.dot{fill:var(--card);stroke:var(--k);stroke-width:2}
.whisker{stroke:var(--ink);stroke-width:1.4;opacity:.55}
.hair{stroke:var(--dim);stroke-width:1;stroke-dasharray:3 3}
.k0{--k:var(--k0)}.k1{--k:var(--k1)}.k2{--k:var(--k2)}.k3{--k:var(--k3)}.k4{--k:var(--k4)}.k5{--k:var(--k5)}
.k6{--k:var(--k6)}.k7{--k:var(--k7)}.k8{--k:var(--k8)}.k9{--k:var(--k9)}.k10{--k:var(--k10)}.k11{--k:var(--k11)}
.legend{display:flex;flex-wrap:wrap;gap:4px 20px;list-style:none;margin:10px 0 0;padding:0;font-size:13px}
.legend i{display:inline-block;width:11px;height:11px;border-radius:3px;background:var(--k);margin-right:7px}
.legend span{overflow-wrap:anywhere}
.legend small{color:var(--dim);font-size:12.5px;font-variant-numeric:tabular-nums}
.scroll{overflow:auto;max-height:36em;margin:0 -18px;padding:0 18px}
table{border-collapse:separate;border-spacing:0;font-size:13.5px;min-width:100%}
th,td{padding:6px 12px;border-bottom:1px solid var(--line);text-align:left;vertical-align:top;unicode-bidi:isolate;
white-space:pre-line;overflow-wrap:break-word;max-width:56ch}
th{position:sticky;top:0;background:var(--head);font-weight:600;z-index:1}
tr.groups th{text-align:center;border-bottom:0;position:static}
tbody tr:hover td{background:var(--head)}
tbody tr:last-child td{border-bottom:0}
.n,th.n{text-align:right;font-variant-numeric:tabular-nums;white-space:nowrap}
th.n{white-space:pre-line}
th[aria-sort]{cursor:pointer;user-select:none}
th[aria-sort]:hover{color:var(--accent)}
th[aria-sort]::after{content:"\2195";opacity:.35;margin-left:5px;font-size:11px}
th[aria-sort=ascending]::after{content:"\2191";opacity:1}
th[aria-sort=descending]::after{content:"\2193";opacity:1}
.tip{position:fixed;pointer-events:none;background:var(--ink);color:var(--card);border-radius:8px;padding:6px 10px;
font-size:12.5px;line-height:1.45;white-space:pre;z-index:9;display:none;font-variant-numeric:tabular-nums}
footer{color:var(--dim);font-size:12.5px;padding-top:26px;padding-bottom:40px}
@media print{details::details-content{content-visibility:visible;height:auto}.head{padding:8px 0;border:0}
.head,.head pre{break-inside:avoid}pre{font-size:10px}body{font-size:11px}header,main,footer{max-width:none;padding-left:0;padding-right:0}nav,.tip{display:none!important}
figure{break-inside:avoid;padding:8px 0;border:0}figure.table{break-inside:auto}thead{display:table-header-group}
tr{break-inside:avoid}h2,h3{break-after:avoid}.scroll{max-height:none;overflow:visible;margin:0;padding:0}
table{font-size:9.5px}th,td{padding:3px 6px}th{overflow-wrap:anywhere}.facts{grid-template-columns:repeat(3,1fr)}
th{position:static}th[aria-sort]::after{content:""}*{-webkit-print-color-adjust:exact;print-color-adjust:exact}}
)css";

// When it changes, so does SCRIPT_HASH: the browser's console names the new one.
constexpr const char* SCRIPT = R"js(
'use strict';
const nav = document.querySelector('nav');
for (const section of document.querySelectorAll('section[id]')) {
  const link = document.createElement('a');
  link.href = '#' + section.id;
  link.textContent = section.querySelector('h2').textContent;
  nav.append(link);
}
const keyOf = (row, column) => {
  const cell = row.cells[column];
  const text = cell ? cell.textContent.trim() : '';
  const number = cell && cell.className === 'n' ? Number.parseFloat(text.replace('inf', 'Infinity')) : NaN;
  return {text, number, isEmpty: text === '' || (cell.className === 'n' && Number.isNaN(number))};
};
const compare = (a, b, sign) => {
  if (a.isEmpty !== b.isEmpty) return a.isEmpty ? 1 : -1;
  if (!Number.isNaN(a.number) && !Number.isNaN(b.number)) return sign * (a.number < b.number ? -1 : a.number > b.number ? 1 : 0);
  return sign * a.text.localeCompare(b.text, 'en', {numeric: true});
};
for (const table of document.querySelectorAll('table')) {
  const heads = table.tHead.rows[table.tHead.rows.length - 1].cells;
  const body = table.tBodies[0];
  [...heads].forEach((head, column) => {
    head.setAttribute('aria-sort', 'none');
    head.tabIndex = 0;
    if (body.rows.length && [...body.rows].every(row => row.cells[column]?.className === 'n')) head.className = 'n';
    const sort = () => {
      const isRising = head.getAttribute('aria-sort') !== 'ascending';
      for (const other of heads) other.setAttribute('aria-sort', 'none');
      head.setAttribute('aria-sort', isRising ? 'ascending' : 'descending');
      const rows = [...body.rows].map(row => [keyOf(row, column), row]);
      rows.sort((a, b) => compare(a[0], b[0], isRising ? 1 : -1));
      body.append(...rows.map(row => row[1]));
    };
    head.addEventListener('click', sort);
    head.addEventListener('keydown', event => {
      if (event.key !== 'Enter' && event.key !== ' ') return;
      event.preventDefault();
      sort();
    });
  });
}
addEventListener('beforeprint', () => document.querySelectorAll('details').forEach(part => { part.open = true; }));
const tip = document.body.appendChild(document.createElement('div'));
tip.className = 'tip';
for (const svg of document.querySelectorAll('svg.line')) {
  const data = svg.dataset;
  const lines = [...svg.querySelectorAll('.stroke')].map(path => ({
    name: path.dataset.name,
    points: path.getAttribute('d').slice(1).replace(/h0$/, '').split('L').map(text => text.split(' ').map(Number))}));
  const hair = svg.appendChild(document.createElementNS('http://www.w3.org/2000/svg', 'path'));
  hair.setAttribute('class', 'hair');
  const [left, right, top, bottom] = data.plot.trim().split(' ').map(Number);
  const scale = (at, from, to, low, high) => +low + (at - from) / (to - from) * (high - low);
  svg.addEventListener('pointermove', event => {
    const box = svg.getBoundingClientRect();
    const wanted = (event.clientX - box.left) / box.width * 960;
    const nearest = points => points.reduce((best, point) =>
      Math.abs(point[0] - wanted) < Math.abs(best[0] - wanted) ? point : best);
    const x = nearest(lines[0].points)[0];
    hair.setAttribute('d', `M${x} ${top}V${bottom}`);
    const texts = lines.map(line => line.name + ': ' +
      scale(nearest(line.points)[1], bottom, top, data.y0, data.y1).toPrecision(3) + ' ' + data.unit);
    tip.textContent = [scale(x, left, right, data.x0, data.x1).toPrecision(4) + ' ' + data.time, ...texts].join('\n');
    tip.style.display = 'block';
    tip.style.top = event.clientY + 14 + 'px';
    tip.style.left = Math.min(event.clientX + 14, innerWidth - tip.offsetWidth - 8) + 'px';
  });
  svg.addEventListener('pointerleave', () => { tip.style.display = 'none'; hair.removeAttribute('d'); });
}
)js";
constexpr const char* SCRIPT_HASH = "sha256-zMYvl/ay20c5VijTUIIvKayFDJY6AM2fd0Vua3q8L04=";

constexpr const char* BRAND =
    "<div class=\"brand\"><svg viewBox=\"0 0 24 24\" aria-hidden=\"true\"><path d=\"M2 13h4l3-8 5 14 3-9 1.6 3H22\"/>"
    "</svg>Quorvane measurement</div>";

// Each line stands in a line of the file too. Rules of hyphens are drawn.
void appendLines(std::string& out, const std::vector<std::string>& lines)
{
    out += "<pre>";
    for (const std::string& line : lines) {
        const bool isRule = !line.empty() && line.find_first_not_of('-') == std::string::npos;
        if (isRule) out += "<span class=\"rule\">";
        appendHtml(out, line);
        out += isRule ? "\n</span>" : "\n";
    }
    out += "</pre>";
}

void appendHead(std::string& out, const ResultHead& head)
{
    out += "<div class=\"head\"><div><h3>Tool</h3>";
    appendLines(out, head.tool);
    out += "</div><div><h3>Collection</h3>";
    appendLines(out, head.collection);
    out += "</div><details><summary>Hardware</summary>";
    appendLines(out, head.hardware);
    out += "</details></div>";
}

void appendFacts(std::string& out, const HtmlPage::Facts& facts)
{
    out += "<dl class=\"facts\">";
    for (const auto& [label, text] : facts) {
        out += "<div><dt>";
        appendHtml(out, label);
        out += "</dt><dd>";
        appendHtml(out, text);
        out += "</dd></div>";
    }
    out += "</dl>";
}

}    // namespace

void HtmlPage::begin(std::string& out, const std::string& title, const Facts& facts, const ResultHead& head)
{
    out += "<!DOCTYPE html>\n<html lang=\"en\"><head><meta charset=\"utf-8\">\n"
           "<meta http-equiv=\"Content-Security-Policy\" content=\"default-src 'none'; style-src 'unsafe-inline'; "
           "script-src '";
    out += SCRIPT_HASH;
    out += "'\">\n<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n<title>";
    appendHtml(out, title);
    out += "</title>\n<style>";
    out += STYLE;
    out += "</style></head>\n<body><header>";
    out += BRAND;
    out += "<h1>";
    appendHtml(out, title);
    out += "</h1>";
    appendFacts(out, facts);
    if (!head.tool.empty()) appendHead(out, head);
    out += "<nav aria-label=\"Sections\"></nav></header>\n<main>\n";
}

void HtmlPage::end(std::string& out)
{
    out +=
        "</main>\n<footer>Everything shown is in this one file. A click on a column title sorts its table; the charts "
        "are thinned for drawing, with every minimum and maximum kept.</footer>\n<script>";
    out += SCRIPT;
    out += "</script></body></html>\n";
}

}    // namespace host
