// The local tool server: lets agents on this machine read the database and write proposals to it, over HTTP on
// loopback.

process.on("SIGTERM", () => process.exit(0));
const port = Number(process.env.NIMB_MCP_PORT) || 8765;
try {
  const { serve } = await import("./tools/serve.ts"); // imported only here: its packages may be missing
  await serve(port);
} catch (error) {
  console.error(reasonOf(error as NodeJS.ErrnoException));
  process.exit(1);
}

/** Why it cannot run, in one line. */
function reasonOf({ code, message }: NodeJS.ErrnoException): string {
  const [words] = message.split("\n");
  if (code === "EADDRINUSE") return `The tool server can't start: another program uses port ${port}.`;
  if (code === "ERR_MODULE_NOT_FOUND") return `The tool server can't start: a package is missing. ${words}`;
  return `The tool server can't start: ${words}`;
}

export {};
