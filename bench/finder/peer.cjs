// Times @ghostery/adblocker:  node peer.cjs FOLDER FILE
// FOLDER holds the package, FILE {"domains": [...], "page": URL, "requests": [URL, ...]}. Prints
// {"compiling": seconds, "request": the median's seconds, "blocked": N,
// "peakMemory": bytes}.
const { createRequire } = require('node:module')
const { readFileSync } = require('node:fs')
const path = require('node:path')

const [folder, file] = process.argv.slice(2)
const { FiltersEngine, Request } = createRequire(path.resolve(folder) + '/')('@ghostery/adblocker')
const { domains, page, requests } = JSON.parse(readFileSync(file, 'utf8'))

const now = () => Number(process.hrtime.bigint()) / 1e9
const start = now()
const engine = FiltersEngine.parse(domains.map((domain) => `||${domain}^`).join('\n'))
const compiling = now() - start

// The first round warms the compiler up.
let blocked = 0
let times = []
for (let round = 0; round < 2; ++round) {
  blocked = 0
  times = requests.map((url) => {
    const begin = now()
    const request = Request.fromRawDetails({ url, sourceUrl: page, type: 'script' })
    blocked += engine.match(request).match ? 1 : 0
    return now() - begin
  })
}
times.sort((a, b) => a - b)
// Not process.resourceUsage(), which counts what there was before node as well.
const status = readFileSync('/proc/self/status', 'utf8')
const peakMemory = Number(/VmHWM:\s+(\d+)/.exec(status)[1]) * 1024
console.log(JSON.stringify({ compiling, request: times[times.length >> 1], blocked, peakMemory }))
