#include "adserver/DashboardPage.h"

namespace {

// Self-contained: no outside scripts, styles, fonts or images. Everything outside text goes into the
// page as textContent, never as markup.
constexpr std::string_view kPage = R"PAGE(<!DOCTYPE html>
<html lang="en"><head><meta charset="utf-8">
<meta name="viewport" content="width=device-width,initial-scale=1">
<title>Vantor reference ad server</title>
<style>
:root{--ink:#1b2430;--muted:#5d6b7a;--line:#d8dee6;--bg:#f5f7fa;--accent:#2f6fb0;--warm:#f0a52e}
*{box-sizing:border-box}
body{margin:0;font:14px/1.4 "DejaVu Sans",sans-serif;color:var(--ink);background:var(--bg)}
header{display:flex;align-items:center;gap:16px;padding:12px 20px;background:var(--ink);color:#fff}
header h1{font-size:18px;margin:0;flex:1}
#status{font-size:12px;padding:2px 8px;border-radius:10px;background:#7a8793}
#status.live{background:#2e9d5b}
main{padding:16px 20px;display:grid;gap:16px}
.tiles{display:grid;grid-template-columns:repeat(6,1fr);gap:10px}
.tile{background:#fff;border:1px solid var(--line);border-radius:6px;padding:8px 12px}
.tile b{display:block;font-size:24px}
.tile span{color:var(--muted);font-size:12px;text-transform:uppercase;letter-spacing:.04em}
section{background:#fff;border:1px solid var(--line);border-radius:6px;padding:10px 14px}
h2{font-size:15px;margin:0 0 8px}
table{border-collapse:collapse;width:100%}
th,td{text-align:left;padding:4px 8px;border-bottom:1px solid var(--line);vertical-align:top}
th{font-size:12px;color:var(--muted);font-weight:normal;text-transform:uppercase}
td.n{text-align:right;font-variant-numeric:tabular-nums}
#slots th:not(:first-child),#networks th:not(:first-child){text-align:right;width:9%}
#events td.name{word-break:normal;white-space:nowrap}
td.name{font-family:"DejaVu Sans Mono",monospace;word-break:break-all}
.empty{color:var(--muted);font-style:italic}
.changed{animation:flash 1.2s ease-out}
@keyframes flash{from{background:#ffe6a8}to{background:transparent}}
#events td{font-size:12px}
.kind{display:inline-block;min-width:62px;padding:0 6px;border-radius:3px;color:#fff;background:var(--accent)}
.kind.imp,.kind.ping{background:#2e9d5b}.kind.click,.kind.clk{background:var(--warm)}
.kind.nofill{background:#8a5cc2}.kind.house{background:#3d8c95}
.param{display:inline-block;margin:1px 4px 1px 0;padding:0 4px;border:1px solid var(--line);border-radius:3px;
  font-family:"DejaVu Sans Mono",monospace;max-width:32em;overflow:hidden;text-overflow:ellipsis;
  white-space:nowrap;vertical-align:bottom}
.param b{font-weight:normal;color:var(--muted)}
footer{padding:0 20px 16px;color:var(--muted);font-size:12px}
</style></head>
<body>
<header><h1>Vantor reference ad server</h1><span id="status">connecting</span></header>
<main>
<div class="tiles" id="totals">
<div class="tile"><b class="requests">0</b><span>requests</span></div>
<div class="tile"><b class="fills">0</b><span>fills</span></div>
<div class="tile"><b class="impressions">0</b><span>impressions</span></div>
<div class="tile"><b class="clicks">0</b><span>clicks</span></div>
<div class="tile"><b class="nofills">0</b><span>no-fills</span></div>
<div class="tile"><b class="pings">0</b><span>tracking pings</span></div>
</div>
<section><h2>Slots</h2><table id="slots"><thead><tr><th>slot</th><th>requests</th><th>fills</th>
<th>impressions</th><th>clicks</th><th>no-fills</th><th>pings</th></tr></thead><tbody></tbody></table></section>
<section><h2>Mediated networks</h2><table id="networks"><thead><tr><th>network</th><th>requests</th>
<th>fills</th><th>impressions</th><th>clicks</th><th>no-fills</th><th>pings</th></tr></thead><tbody></tbody></table>
</section>
<section><h2>Latest events</h2><table id="events"><thead><tr><th>#</th><th>time</th><th>event</th><th>slot</th>
<th>network</th><th>outcome</th><th>parameters</th></tr></thead><tbody></tbody></table></section>
</main>
<footer>Ads at /ad, the support script at /sdk-core-v40.js, reports at /imp, /clk and /nofill (also under
/events), tracking at /track, clicks at /click. This page reads /api/stats and /api/events.</footer>
<script>
'use strict';
var COLUMNS = ['requests', 'fills', 'impressions', 'clicks', 'nofills', 'pings'];
var KEEP = 100;
var shownEventId = -1;
var lastStatsId = -1;

function element(tag, className, text) {
  var e = document.createElement(tag);
  if (className) e.className = className;
  if (text !== undefined) e.textContent = text;
  return e;
}

function setNumber(cell, value) {
  var text = String(value);
  if (cell.textContent === text) return;
  cell.textContent = text;
  cell.classList.remove('changed');
  void cell.offsetWidth;
  cell.classList.add('changed');
}

function fillTable(id, rows, key) {
  var body = document.querySelector('#' + id + ' tbody');
  if (!rows.length) {
    if (!body.rows.length) {
      var cell = element('td', '', 'nothing yet');
      cell.colSpan = 7;
      body.appendChild(element('tr', 'empty')).appendChild(cell);
    }
    return;
  }
  if (body.rows.length && body.rows[0].classList.contains('empty')) body.deleteRow(0);
  var byName = {};
  Array.prototype.forEach.call(body.rows, function (row) { byName[row.dataset.name] = row; });
  rows.forEach(function (data) {
    var row = byName[data[key]];
    if (!row) {
      row = element('tr');
      row.dataset.name = data[key];
      row.appendChild(element('td', 'name', data[key]));
      COLUMNS.forEach(function (c) { row.appendChild(element('td', 'n ' + c, '0')); });
      body.appendChild(row);
    }
    COLUMNS.forEach(function (c) { setNumber(row.querySelector('.' + c), data[c]); });
  });
}

function showStats(stats) {
  COLUMNS.forEach(function (c) { setNumber(document.querySelector('#totals .' + c), stats.totals[c]); });
  fillTable('slots', stats.slots, 'slot');
  fillTable('networks', stats.networks, 'network');
}

function eventRow(event) {
  var row = element('tr');
  row.dataset.id = event.id;
  row.appendChild(element('td', 'n', String(event.id)));
  row.appendChild(element('td', '', new Date(event.time * 1000).toLocaleTimeString()));
  var kind = element('td');
  kind.appendChild(element('span', 'kind ' + event.kind, event.kind));
  row.appendChild(kind);
  row.appendChild(element('td', 'name', event.slot));
  row.appendChild(element('td', 'name', event.network));
  row.appendChild(element('td', '', event.outcome + (event.detail ? ' ' + event.detail : '')));
  var params = element('td', 'params');
  event.params.forEach(function (pair) {
    var chip = element('span', 'param');
    chip.title = pair[0] + '=' + pair[1];
    chip.appendChild(element('b', '', pair[0] + '='));
    chip.appendChild(document.createTextNode(pair[1]));
    params.appendChild(chip);
  });
  row.appendChild(params);
  return row;
}

function showEvents(events) {
  var body = document.querySelector('#events tbody');
  for (var i = events.length - 1; i >= 0; --i) {
    var row = eventRow(events[i]);
    row.classList.add('changed');
    body.insertBefore(row, body.firstChild);
    shownEventId = Math.max(shownEventId, events[i].id);
  }
  while (body.rows.length > KEEP) body.deleteRow(body.rows.length - 1);
}

function getJson(path) {
  return fetch(path, {cache: 'no-store'}).then(function (response) {
    if (!response.ok) throw new Error(path + ': ' + response.status);
    return response.json();
  });
}

function setStatus(live) {
  var status = document.getElementById('status');
  status.textContent = live ? 'live' : 'server not answering';
  status.className = live ? 'live' : '';
}

// Each question waits at the server until there is something new (or 25 seconds pass), so news
// shows at once; after a failure the page asks again a second later.
function poll() {
  var after = lastStatsId < 0 ? '' : '&after=' + lastStatsId;
  getJson('/api/stats?wait=25' + after).then(function (stats) {
    showStats(stats);
    setStatus(true);
    if (stats.lastEventId === lastStatsId) return;
    lastStatsId = stats.lastEventId;
    var since = shownEventId < 0 ? 0 : shownEventId;
    return getJson('/api/events?after=' + since + '&limit=' + KEEP).then(function (answer) {
      showEvents(answer.events);
    });
  }).then(function () { poll(); }, function () {
    setStatus(false);
    setTimeout(poll, 1000);
  });
}
poll();
</script>
</body></html>
)PAGE";

}  // namespace

std::string_view DashboardPage::html() {
    return kPage;
}
