// SPDX-License-Identifier: MIT
// The bundler gives files of this kind as texts.
declare module "*.toml" {
  const text: string;
  export default text;
}
