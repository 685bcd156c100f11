// The sampling of tools/mutate: node mutate.ts TREE SEED COUNT [ROOM...]
import { spawnSync } from 'node:child_process';
import { existsSync, readFileSync, readdirSync, writeFileSync } from 'node:fs';
import { basename, join } from 'node:path';

type Fault = { file: string; line: number; before: string; after: string };

const [tree, seed, count, ...wanted] = process.argv.slice(2);
const rooms = 'Sources/Corvane';

/** The mulberry32 generator: small, seeded, good enough to sample with. */
function randomNumbers(start: number): () => number {
    let state = start >>> 0;
    return () => {
        state = (state + 0x6d2b79f5) >>> 0;
        let mixed = Math.imul(state ^ (state >>> 15), state | 1);
        mixed ^= mixed + Math.imul(mixed ^ (mixed >>> 7), mixed | 61);
        return ((mixed ^ (mixed >>> 14)) >>> 0) / 2 ** 32;
    };
}

const flips: [RegExp, string][] = [
    [/ == /, ' != '], [/ != /, ' == '], [/ <= /, ' < '], [/ >= /, ' > '], [/ < (?=[\w(])/, ' <= '], [/ > (?=[\w(])/, ' >= '],
    [/ && /, ' || '], [/ \|\| /, ' && '], [/ \+ (?=[\w(])/, ' - '], [/ - (?=[\w(])/, ' + '], [/\+\+(?=\w)/, '--'],
    [/\btrue\b/, 'false'], [/\bfalse\b/, 'true'], [/\bif \(!/, 'if ('], [/\bif \((?!!|const |auto )/, 'if (!'],
    [/\breturn (?!(?:0|nullptr|false|std::nullopt|[A-Z]\w*\(\));)([^;{}]*[\w)]);/, 'return {};'], // but for what {} is, too
];
/** A whole call or assignment on a line of its own; declarations, returns, jumps and reserved memory are none. */
const statement = /^\s+(?!.*\breserve\()(?!return\b|break\b|continue\b|case\b|const\b|auto\b|static\b|using\b|co_return\b|delete\b)[\w.:>()[\]-]+(\(.*\)| [-+|&]?= .*);$/;

function faultsIn(file: string): Fault[] {
    const faults: Fault[] = [];
    readFileSync(join(tree, file), 'utf8').split('\n').forEach((before, index) => {
        if (/^\s*(\/\/|#|case |using |namespace|static_assert|constexpr|Q_ASSERT|Q_UNREACHABLE)/.test(before) || /u?"[^"]*(SELECT|UPDATE|INSERT)/.test(before))
            return;
        const code = before.replace(/"(\\.|[^"\\])*"|\/\/.*$/g, (text) => ' '.repeat(text.length)); // no fault in texts and comments
        for (const [pattern, to] of flips) {
            const found = pattern.exec(code);
            if (found)
                faults.push({ file, line: index + 1, before,
                    after: before.slice(0, found.index) + to + before.slice(found.index + found[0].length) });
        }
        if (statement.test(before))
            faults.push({ file, line: index + 1, before, after: '' });
    });
    return faults;
}

function sourcesBelow(folder: string): string[] {
    return readdirSync(join(tree, folder), { recursive: true, encoding: 'utf8' })
        .filter((name) => name.endsWith('.cpp')).map((name) => join(folder, name)).sort();
}

const uses = [...readFileSync(join(tree, 'CMakeLists.txt'), 'utf8').matchAll(/^corvane_room\((\w+) USES ([\w\s]*)/gm)]
    .map(([, room, used]) => ({ room, used: used.split(/\s+/) }));

/** The rooms whose line in CMakeLists.txt names this one. */
function usersOf(room: string): string[] {
    return uses.filter(({ used }) => used.includes(room)).map((user) => user.room);
}

function namesIn(folder: string, word: RegExp): boolean {
    return existsSync(join(tree, folder)) && readdirSync(join(tree, folder), { recursive: true, encoding: 'utf8' })
        .some((name) => /\.(cpp|h)$/.test(name) && word.test(readFileSync(join(tree, folder, name), 'utf8')));
}

/** The room itself, then the rooms above it whose tests name the file's type, then those that run the whole program.
 *  These play the machine, so that they cannot find a fault of Platform. */
function testersOf(fault: Fault, room: string): string[] {
    const type = new RegExp(`\\b${basename(fault.file, '.cpp')}\\b`);
    const whole = room === 'Platform' ? [] : usersOf('ALL');
    return [...new Set([room, ...usersOf(room).filter((user) => namesIn(join('Tests', user), type)), ...whole])];
}

/** A file with a fault must not reach the compile cache, which other checkouts share. */
function builds(room: string, cache: 'cached' | 'uncached'): boolean {
    const env = { ...process.env, ...(cache === 'uncached' ? { CCACHE_DISABLE: '1' } : {}) };
    return spawnSync('ninja', ['-C', 'build/check', `${room}Tests`], { cwd: tree, stdio: 'ignore', env }).status === 0;
}

/** The first test of the room that fails; nothing if all pass. A fault may make the tests run for ever: they fail after
 *  so many seconds, with every child of theirs. */
function failing(room: string, seconds: number): string | undefined {
    const words = ['--kill-after=5', String(seconds), 'ctest', '--preset', 'check', '-R', `^${room}Tests$`];
    const env = { ...process.env, GTEST_FAIL_FAST: '1' };
    const { status, stdout } = spawnSync('timeout', words, { cwd: tree, env, encoding: 'utf8', maxBuffer: 1 << 28 });
    return status === 0 ? undefined : /\[  FAILED  \] ([\w/]+\.[\w/]+)/.exec(stdout)?.[1] ?? `the end of ${room}Tests`;
}

const limits = new Map<string, number>();

/** Ten times what the room's tests take without a fault, in seconds. They must build and pass. */
function limitOf(room: string): number {
    const known = limits.get(room);
    if (known !== undefined)
        return known;
    const isBuilt = builds(room, 'cached');
    const start = Date.now();
    const trouble = isBuilt ? failing(room, 900) : 'the build';
    if (trouble) {
        console.error(`${room}Tests fails without any fault: ${trouble}.`);
        process.exit(1);
    }
    const limit = Math.ceil((Date.now() - start) / 100) + 10;
    limits.set(room, limit);
    return limit;
}

type Finding = { room: string; test: string };

/** The first of the rooms with a test that fails, null if all pass, nothing if the fault does not compile. */
function finding(fault: Fault, testers: string[]): Finding | null | undefined {
    testers.forEach(limitOf); // before the fault is there
    const path = join(tree, fault.file);
    const whole = readFileSync(path, 'utf8');
    const lines = whole.split('\n');
    lines[fault.line - 1] = fault.after;
    writeFileSync(path, lines.join('\n'));
    try {
        for (const room of testers) {
            if (!builds(room, 'uncached'))
                return undefined;
            const test = failing(room, limitOf(room));
            if (test)
                return { room, test };
        }
        return null;
    } finally {
        writeFileSync(path, whole);
    }
}

const names = (wanted.length ? wanted : readdirSync(join(tree, rooms)).sort())
    .filter((room) => existsSync(join(tree, 'Tests', room)) && existsSync(join(tree, rooms, room)));
const pool = names.flatMap((room) => sourcesBelow(join(rooms, room)).flatMap(faultsIn).map((fault) => ({ room, fault })));
const random = randomNumbers(Number(seed));
let tried = 0;
let found = 0;
let byRoom = 0;
while (tried < Number(count) && pool.length) {
    const [{ room, fault }] = pool.splice(Math.floor(random() * pool.length), 1);
    const finder = finding(fault, testersOf(fault, room));
    if (finder === undefined)
        continue;
    ++tried;
    found += finder ? 1 : 0;
    byRoom += finder?.room === room ? 1 : 0;
    const change = `${fault.file}:${fault.line}: ${fault.before.trim()}  ->  ${fault.after.trim() || '(dropped)'}`;
    console.log(finder ? `found    ${change}  by ${finder.test}` : `SURVIVED ${change}`);
}
console.log(`${found} of ${tried} faults found, ${byRoom} of them by the room's own tests`);
