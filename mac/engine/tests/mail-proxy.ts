// A proxy between the engine and Dovecot, with TLS on both sides, that injects faults.

import type { AddressInfo } from "node:net";
import { connect, createServer, type TLSSocket } from "node:tls";
import { password, type MailServers } from "./mail-servers.ts";

export class SpoiledImap {
  /** What the engine receives instead of the server's response, in Latin-1; undefined ends the connection. */
  heard: (words: string) => string | undefined = (words) => words;
  /** What the engine is answered instead of passing its command on. */
  answered: (command: string) => string | undefined = () => undefined;
  readonly #sockets = new Set<TLSSocket>();
  readonly #server;

  private constructor({ tls, imapPort }: MailServers) {
    this.#server = createServer(tls(), (engine) => {
      const server = connect({ port: imapPort, host: "127.0.0.1", rejectUnauthorized: false });
      for (const [socket, other] of [[engine, server], [server, engine]]) {
        this.#sockets.add(socket);
        socket.on("error", () => {}).on("close", () => (this.#sockets.delete(socket), other.destroy()));
      }
      server.on("data", (data) => {
        const words = this.heard(data.toString("latin1"));
        if (words === undefined) engine.destroy();
        else engine.write(words, "latin1");
      });
      engine.on("data", (data) => {
        const answer = this.answered(data.toString("latin1"));
        if (answer === undefined) server.write(data);
        else engine.write(answer);
      });
    });
  }

  static async open(servers: MailServers): Promise<SpoiledImap> {
    const spoiled = new SpoiledImap(servers);
    await new Promise<void>((resolve) => spoiled.#server.listen(0, "127.0.0.1", resolve));
    return spoiled;
  }

  /** For EMAIL_PASS. */
  secret({ smtpPort }: MailServers): string {
    const { port } = this.#server.address() as AddressInfo;
    const at = (which: number): object => ({ host: "localhost", port: which, security: "tls" });
    return JSON.stringify({ password, imap: at(port), smtp: at(smtpPort) });
  }

  close(): void {
    this.#server.close();
    for (const socket of this.#sockets) socket.destroy();
  }
}
