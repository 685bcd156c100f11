// A page on loopback that fails in three ways (a script, a request, a console message), for the QA browser of the Dev hub.
// node demo/page.mjs [PORT]   prints its address

import { createServer } from "node:http";

const page = `<!doctype html>
<html lang="en"><head><meta charset="utf-8"><title>Taller Vidal: order a piece</title>
<style>
  body { font: 16px/1.5 sans-serif; margin: 3em auto; max-width: 34em; color: #2b2622; background: #faf6f0 }
  label { display: block; margin-top: 1em } input { font: inherit; padding: .4em; width: 100%; box-sizing: border-box }
  button { margin-top: 1.5em; font: inherit; padding: .5em 1.4em }
</style></head><body>
<h1>Order a piece</h1>
<form><label>Piece <input name="piece" value="Blue bowl, 24 cm"></label>
<label>Password <input name="password" type="password"></label><button>Order</button></form>
<p id="price">The price is being fetched.</p>
<script>
  console.error("The stock of the shop could not be read, token=demo-4711-secret");
  fetch("/price?api_key=demo-4711-secret").then(answer => answer.json()).catch(() => {
    document.getElementById("price").textContent = "The price is not known.";
  });
  document.querySelector("form").addEventListener("submit", event => {
    event.preventDefault();
    order(event.target.piece.value);
  });
  setTimeout(() => shop.ready());
</script></body></html>`;

const server = createServer((request, response) => {
  const path = new URL(request.url, "http://localhost").pathname;
  if (path === "/favicon.ico") return response.writeHead(204).end();
  const isPage = path === "/";
  response.writeHead(isPage ? 200 : 500, { "content-type": "text/html; charset=utf-8" });
  response.end(isPage ? page : "The price list is missing.");
});
const listen = port => server.listen(port, "127.0.0.1", () => console.log(`http://127.0.0.1:${server.address().port}/`));
server.once("error", () => listen(0));
listen(Number(process.argv[2] ?? 4780));
