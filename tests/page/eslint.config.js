// How the page's script is checked. Run from the top of the repository.

import js from "@eslint/js";
import globals from "globals";

export default [
  js.configs.recommended,
  {
    languageOptions: { ecmaVersion: 2023, sourceType: "module", globals: globals.browser },
    linterOptions: { reportUnusedDisableDirectives: "error" },
    rules: {
      complexity: ["error", 16],

      eqeqeq: "error",
      "max-depth": ["error", 4],
      "max-len": ["error", { code: 120 }],
      "max-lines": ["error", 250],
      "no-eval": "error",
      "no-implied-eval": "error",
      "no-param-reassign": "off",
      "no-restricted-properties": [
        "error",
        { property: "innerHTML", message: "Text of the disk goes in as text." },
        { property: "outerHTML", message: "Text of the disk goes in as text." },
        { property: "insertAdjacentHTML", message: "Text of the disk goes in as text." },
        { object: "document", property: "write", message: "Text of the disk goes in as text." },
      ],
      "no-shadow": "error",
      "no-var": "error",
      "prefer-const": "error",
      "no-use-before-define": ["error", { functions: false, variables: false }],
      "no-control-regex": "off",
    },
  },
];
