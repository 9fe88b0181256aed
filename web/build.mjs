// Bundles the page into OUTDIR (default dist/): app.js, app.css and index.html.
import { build } from "esbuild";
import { copyFileSync, mkdirSync } from "node:fs";

const outdir = process.argv[2] ?? "dist";
mkdirSync(outdir, { recursive: true });
await build({
  entryPoints: ["src/main.js", "src/style.css"],
  bundle: true,
  minify: true,
  format: "iife",
  target: "es2020",
  outdir,
  entryNames: "app",
  legalComments: "none",
  logLevel: "warning",
}).catch(() => process.exit(1));
copyFileSync("src/index.html", `${outdir}/index.html`);
