import { Refusal } from "./database.ts";

/** The result of scanning a page. */
export interface Finding {
  status: number;
  title: string;
  parts: number; ///< scripts, styles and pictures that were asked for
  elsewhere: number; ///< those on other machines, which were not
  problems: string[];
}

const longestPage = 1_000_000;
const mostParts = 25;
const mostRedirects = 5;
const patience = 10_000;
const browserControl = "9335"; // the port that controls the browser in which the user views pages

/** Requests to other hosts could leak data. */
function isHere({ protocol, hostname, port }: URL): boolean {
  const local = hostname === "localhost" || hostname === "[::1]" || /^127(\.\d+){3}$/.test(hostname);
  return local && ["http:", "https:"].includes(protocol) && port !== browserControl;
}

async function get(url: URL): Promise<Response> {
  let at = url;
  for (let redirects = 0; redirects <= mostRedirects; ++redirects) {
    if (!isHere(at)) throw new Refusal(`${at.origin} is not looked at: only pages on this machine are.`);
    const response = await fetch(at, { redirect: "manual", signal: AbortSignal.timeout(patience) });
    const location = response.headers.get("location");
    if (response.status < 300 || response.status >= 400 || !location) return response;
    await response.body?.cancel();
    at = new URL(location, at);
  }
  throw new Refusal(`${url.href} redirects without end.`);
}

async function textOf(response: Response): Promise<string> {
  const decoder = new TextDecoder();
  let text = "";
  for await (const part of response.body ?? []) {
    text += decoder.decode(part, { stream: true });
    if (text.length > longestPage) break;
  }
  return text;
}

function attribute(tag: string, name: string): string | undefined {
  const found = tag.match(new RegExp(`\\b${name}\\s*=\\s*(?:"([^"]*)"|'([^']*)'|([^\\s"'>]+))`, "i"));
  return found?.[1] ?? found?.[2] ?? found?.[3];
}

/** The scripts, styles, icons and images that the page refers to. */
function partsOf(html: string, base: URL): URL[] {
  const found = new Map<string, URL>();
  for (const [tag, name] of html.matchAll(/<(script|link|img)\b[^<>]{0,2000}>/gi)) {
    const isLink = name?.toLowerCase() === "link";
    if (isLink && !/\b(stylesheet|icon)\b/i.test(attribute(tag, "rel") ?? "")) continue;
    const named = attribute(tag, isLink ? "href" : "src");
    const url = named ? URL.parse(named, base.href) : null;
    if (url && url.protocol.startsWith("http")) found.set(url.href, url);
  }
  return [...found.values()];
}

async function problemWith(part: URL): Promise<string | undefined> {
  try {
    const response = await get(part);
    await response.body?.cancel();
    return response.ok ? undefined : `HTTP ${response.status}: ${part.href}`;
  } catch (error) {
    return `No answer: ${part.href} (${reason(error)})`;
  }
}

function reason(error: unknown): string {
  const { message, cause } = error as Error;
  return cause instanceof Error ? cause.message : message;
}

/** Requests the page and what it refers to, all on this machine. */
export async function look(url: URL): Promise<Finding> {
  const response = await get(url).catch((error: unknown) => {
    throw error instanceof Refusal ? error : new Refusal(`${url.href} does not answer: ${reason(error)}`);
  });
  const isHtml = (response.headers.get("content-type") ?? "").includes("html");
  const html = isHtml ? await textOf(response) : "";
  await response.body?.cancel().catch(() => undefined);
  const title = html.match(/<title[^<>]*>([^<]{0,300})/i)?.[1]?.trim() ?? "";
  const named = partsOf(html, new URL(response.url));
  const here = named.filter(isHere).slice(0, mostParts);

  const problems = response.ok ? [] : [`HTTP ${response.status}: ${url.href}`];
  if (!isHtml) problems.push("The page is not HTML.");
  else if (!title) problems.push("The page has no title.");
  for (const part of here) {
    const problem = await problemWith(part);
    if (problem) problems.push(problem);
  }
  return {
    status: response.status,
    title,
    parts: here.length,
    elsewhere: named.filter((part) => !isHere(part)).length,
    problems,
  };
}
