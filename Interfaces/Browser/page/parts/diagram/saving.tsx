// SPDX-License-Identifier: MIT
// Saves a diagram as a drawing.
import type { RefObject } from "preact";
import { ActionButton, SaveButton } from "../copy_button";
import type { Plot } from "./plot";

const scale = 2;

/** The pixels of a drawing. */
async function saveAsPng(name: string, svg: string): Promise<void> {
  const image = new Image();
  image.src = `data:image/svg+xml;charset=utf-8,${encodeURIComponent(svg)}`;
  await image.decode();
  const canvas = document.createElement("canvas");
  [canvas.width, canvas.height] = [scale * image.width, scale * image.height];
  canvas.getContext("2d")?.drawImage(image, 0, 0, canvas.width, canvas.height);
  const anchor = document.createElement("a");
  anchor.href = canvas.toDataURL("image/png");
  anchor.download = name;
  anchor.click();
}

export function SaveDrawing(props: {
  plot: RefObject<Plot | null>;
  /** The name of a file with this extension. */
  file: (extension: string) => string;
  heading: string;
}) {
  const drawing = () => props.plot.current?.save(props.heading) ?? "";
  return (
    <>
      <SaveButton label="Save SVG" file={() => props.file("svg")} type="image/svg+xml" text={drawing} />
      <ActionButton label="Save PNG" done="Saved" act={() => saveAsPng(props.file("png"), drawing())} />
    </>
  );
}
