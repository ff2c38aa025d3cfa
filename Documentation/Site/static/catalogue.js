// SPDX-License-Identifier: MIT
// Shows the rows of the catalogue in which every word of the filter stands; capitals, blanks and signs do not count.
(() => {
    const field = document.querySelector("input.filter");
    const count = document.querySelector("output.filter-count");
    const plain = (text) => text.toLowerCase().replace(/[^\p{L}\p{N}]/gu, "");
    const rows = [...document.querySelectorAll("table tbody tr")];
    const texts = rows.map((row) => plain(row.textContent));
    const show = () => {
        const words = field.value.split(/\s+/).map(plain).filter((word) => word !== "");
        let shown = 0;
        rows.forEach((row, i) => {
            row.hidden = !words.every((word) => texts[i].includes(word));
            shown += row.hidden ? 0 : 1;
        });
        count.textContent = `${shown} of ${rows.length} fluids`;
    };
    field.addEventListener("input", show);
    show();
})();
