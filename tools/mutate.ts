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
/** A whole call or assignment on a line of its own; declarations, returns and jumps are none. */
const statement = /^\s+(?!return\b|break\b|continue\b|case\b|const\b|auto\b|static\b|using\b|co_return\b|delete\b)[\w.:>()[\]-]+(\(.*\)| [-+|&]?= .*);$/;

function faultsIn(file: string): Fault[] {
    const faults: Fault[] = [];
    readFileSync(join(tree, file), 'utf8').split('\n').forEach((before, index) => {
        if (/^\s*(\/\/|#|case |using |namespace|static_assert|constexpr|Q_ASSERT|Q_UNREACHABLE)/.test(before) || /u?"[^"]*(SELECT|UPDATE|INSERT)/.test(before))
            return;
        const code = before.replace(/"(\\.|[^"\\])*"/g, (text) => ' '.repeat(text.length)); // no fault inside a text
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

/** The rooms that name this one in CMakeLists.txt; those that use ALL are left out, since their tests take minutes. */
function usersOf(room: string): string[] {
    const lines = readFileSync(join(tree, 'CMakeLists.txt'), 'utf8').matchAll(/^corvane_room\((\w+) USES ([\w\s]*)/gm);
    return [...lines].filter(([, , used]) => used.split(/\s+/).includes(room)).map(([, user]) => user);
}

function namesIn(folder: string, word: RegExp): boolean {
    return existsSync(join(tree, folder)) && readdirSync(join(tree, folder), { recursive: true, encoding: 'utf8' })
        .some((name) => /\.(cpp|h)$/.test(name) && word.test(readFileSync(join(tree, folder, name), 'utf8')));
}

/** The room itself, then the rooms above it whose tests name the file's type. */
function testersOf(fault: Fault, room: string): string[] {
    const type = new RegExp(`\\b${basename(fault.file, '.cpp')}\\b`);
    return [room, ...usersOf(room).filter((user) => namesIn(join('Tests', user), type))];
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
    const { status, stdout } = spawnSync('timeout', words, { cwd: tree, encoding: 'utf8', maxBuffer: 1 << 28 });
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

/** The test of the room that fails; empty if all pass, nothing if the fault does not compile. */
function finder(fault: Fault, room: string): string | undefined {
    const limit = limitOf(room); // before the fault is there
    const path = join(tree, fault.file);
    const whole = readFileSync(path, 'utf8');
    const lines = whole.split('\n');
    lines[fault.line - 1] = fault.after;
    writeFileSync(path, lines.join('\n'));
    try {
        return builds(room, 'uncached') ? failing(room, limit) ?? '' : undefined;
    } finally {
        writeFileSync(path, whole);
    }
}

const names = (wanted.length ? wanted : readdirSync(join(tree, rooms)).sort())
    .filter((room) => existsSync(join(tree, 'Tests', room)) && existsSync(join(tree, rooms, room)));
const pool = names.flatMap((room) => sourcesBelow(join(rooms, room)).flatMap(faultsIn).map((fault) => ({ room, fault })));
const random = randomNumbers(Number(seed));
const survivors: Fault[] = [];
let tried = 0;
while (tried < Number(count) && pool.length) {
    const [{ room, fault }] = pool.splice(Math.floor(random() * pool.length), 1);
    let found: string | undefined = '';
    for (const tester of testersOf(fault, room)) {
        found = finder(fault, tester);
        if (found !== '')
            break;
    }
    if (found === undefined)
        continue;
    ++tried;
    const change = `${fault.file}:${fault.line}: ${fault.before.trim()}  ->  ${fault.after.trim() || '(dropped)'}`;
    console.log(found ? `found    ${change}  by ${found}` : `SURVIVED ${change}`);
    if (!found)
        survivors.push(fault);
}
console.log(`${tried - survivors.length} of ${tried} faults found`);
