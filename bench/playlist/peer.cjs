// Times iptv-playlist-parser from bytes to items:  node peer.cjs FOLDER FILE ROUNDS
// FOLDER holds the package. Prints {"entries": N, "seconds": the best of ROUNDS,
// "peakMemory": bytes}.
const { createRequire } = require('node:module')
const { readFileSync } = require('node:fs')
const path = require('node:path')

const [folder, file, rounds] = process.argv.slice(2)
const parser = createRequire(path.resolve(folder) + '/')('iptv-playlist-parser')
const bytes = readFileSync(file)

let seconds = Infinity
let entries = 0
for (let round = 0; round < Number(rounds); ++round) {
  const start = process.hrtime.bigint()
  entries = parser.parse(bytes.toString('utf8')).items.length
  seconds = Math.min(seconds, Number(process.hrtime.bigint() - start) / 1e9)
}
// Not process.resourceUsage(), which counts what there was before node as well.
const status = readFileSync('/proc/self/status', 'utf8')
const peakMemory = Number(/VmHWM:\s+(\d+)/.exec(status)[1]) * 1024
console.log(JSON.stringify({ entries, seconds, peakMemory }))
