// The rules of the viewer's sources, for `npm run style`.
import js from "@eslint/js";
import globals from "globals";

export default [
  { ignores: ["dist/"] },
  js.configs.recommended,
  {
    linterOptions: { reportUnusedDisableDirectives: "error" },
    rules: {
      "consistent-return": "error",
      eqeqeq: "error",
      "max-depth": ["error", 4],
      "max-lines-per-function": ["error", 80],
      "no-param-reassign": "error",
      "no-shadow": "error",
      "no-unneeded-ternary": "error",
      "no-use-before-define": ["error", { functions: false, classes: false, variables: false }],
      "no-useless-return": "error",
      "no-var": "error",
      "object-shorthand": "error",
      "prefer-const": "error",
      "prefer-template": "error",
    },
  },
  { files: ["src/**"], languageOptions: { globals: globals.browser } },
  { files: ["*.mjs", "*.config.js"], languageOptions: { globals: globals.node } },
];
