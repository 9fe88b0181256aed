// The parent's structure drawn from the molfile the report embeds.

import { Molecule } from "openchemlib/minimal";
import { get } from "./api.js";
import { el } from "./dom.js";

export async function renderStructure(box, route) {
  try {
    const { molfile } = await get(`samples/${route.sample}/structure`, route.report);
    const molecule = Molecule.fromMolfile(molfile);
    const svg = molecule.toSVG(320, 240, "parent-structure", { autoCrop: true, autoCropMargin: 10 });
    const image = el("img", { alt: "Structure of the parent", src: `data:image/svg+xml;charset=utf-8,${encodeURIComponent(svg)}` });
    box.replaceChildren(image, el("p", { class: "muted" }, molfile.split("\n")[0]));
  } catch {
    box.replaceChildren(el("p", { class: "muted" }, "The report embeds no structure for this sample."));
  }
}
