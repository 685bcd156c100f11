// Runs a user's program. It inherits the engine's mark in the environment, so it ends with the engine.

import { execFile } from "node:child_process";

/** The program's output, trimmed. There is no shell, and none of our secrets are in its environment. */
export async function output([program, ...words]: string[], limits: { timeout: number; without: string[] }): Promise<string> {
  const env = { ...process.env };
  for (const name of limits.without) delete env[name];
  return new Promise((resolve, reject) => {
    execFile(program, words, { env, timeout: limits.timeout, maxBuffer: 1 << 20 }, (error, stdout, stderr) => {
      const said = stderr.trim().split("\n").at(-1);
      if (error) reject(new Error(`${program}: ${said || error.message}`));
      else resolve(stdout.trim());
    });
  });
}
