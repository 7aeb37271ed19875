// Runs the reference scorer igc-xc-score on one IGC file for bench/optimize_bench.
//
//   node igc_xc_score_run.mjs INSTALL_DIR FILE SHAPE BUDGET_MS
//
// SHAPE is free, triangle or fai. The rule set is built from the scorer's own
// bound and score functions so that it seeks the same optimum as ours:
// - free: its out-and-return over two turnpoints with multiplier 0.5, which
//   is the one leg P1-P2;
// - triangle: its triangle, the perimeter;
// - fai: its triangle with minSide 0.28.
// The closing is made unlimited and free of penalty (closingWithPenalty
// accepts any closing, closingDistanceFree is infinite) and the rounding is
// the identity, because our objective has neither: the closing comes after
// the search. Every fix is used (invalid: true, trim: false), as we use
// every point of the track.
//
// The solver is run until BUDGET_MS of runs have passed (at least twice, the
// first run warming the JIT); one JSON line reports the fastest run in ms,
// the score in km and the turnpoints as fix indices.
import * as path from 'path';
import { readFileSync } from 'fs';
import { pathToFileURL } from 'url';
import { createRequire } from 'module';

const [dir, file, shape, budgetText] = process.argv.slice(2);
const modules = path.join(dir, 'node_modules');
const require = createRequire(path.join(modules, 'igc-xc-score', 'package.json'));
const IGCParser = require('igc-parser');
const load = (relative) => import(pathToFileURL(path.join(modules, 'igc-xc-score', relative)).href);
const { solver } = await load('index.js');
const scoring = await load('src/scoring.js');

const unlimited = { closingDistance: scoring.closingWithPenalty, closingDistanceFree: Infinity, rounding: (x) => x };
const rules = {
  free: { name: 'free', multiplier: 0.5, bound: scoring.boundOutAndReturn2, score: scoring.scoreOutAndReturn2,
    cardinality: 2, code: 'oar', ...unlimited },
  triangle: { name: 'triangle', multiplier: 1, bound: scoring.boundTriangle, score: scoring.scoreTriangle,
    cardinality: 3, code: 'tri', ...unlimited },
  fai: { name: 'fai', multiplier: 1, bound: scoring.boundTriangle, score: scoring.scoreTriangle, minSide: 0.28,
    cardinality: 3, code: 'fai', ...unlimited },
}[shape];
if (!rules) {
  console.error(`unknown shape ${shape}`);
  process.exit(2);
}

const text = readFileSync(file, 'utf8');
const budget = Number(budgetText) || 2000;
let fastest = Infinity, spent = 0, runs = 0, best;
while (runs < 2 || spent < budget) {
  const flight = IGCParser.parse(text, { lenient: true });
  const start = process.hrtime.bigint();
  best = solver(flight, [rules], { trim: false, invalid: true, noflight: true }).next().value;
  const ms = Number(process.hrtime.bigint() - start) / 1e6;
  fastest = Math.min(fastest, ms);
  spent += ms;
  ++runs;
  if (ms > budget) break;
}
console.log(JSON.stringify({
  ms: fastest, runs, optimal: best.optimal, score_km: best.score,
  turnpoints: best.scoreInfo ? best.scoreInfo.tp.map((p) => p.r) : [],
}));
