"use strict";

// The buttons are shown only where this script runs.
(() => {
  const said = document.getElementById("said");

  // A page from a file may have no clipboard of its own: then the text is selected and copied as by hand.
  const copyBySelection = (element) => {
    const selection = window.getSelection();
    const range = document.createRange();
    range.selectNodeContents(element);
    selection.removeAllRanges();
    selection.addRange(range);
    // The text of the selection would lack the line break at its end.
    document.addEventListener(
      "copy",
      (event) => {
        event.clipboardData.setData("text/plain", element.textContent);
        event.preventDefault();
      },
      { once: true },
    );
    const isCopied = document.execCommand("copy");
    if (isCopied) selection.removeAllRanges();
    return isCopied;
  };

  const copy = async (element) => {
    try {
      await navigator.clipboard.writeText(element.textContent);
      return true;
    } catch {
      return copyBySelection(element);
    }
  };

  for (const button of document.querySelectorAll("button.copy")) {
    const label = button.firstChild;
    button.hidden = false;
    button.addEventListener("click", async () => {
      const isCopied = await copy(document.getElementById(button.dataset.copies));
      label.data = isCopied ? "Copied" : "Press Ctrl+C";
      said.textContent = isCopied ? "Copied" : "Selected: press Ctrl+C to copy";
      window.setTimeout(() => {
        label.data = "Copy";
        said.textContent = "";
      }, 3000);
    });
  }
})();
