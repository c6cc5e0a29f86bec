// How pages that trovisk-map has written are checked.

export default {
  root: true,
  extends: ["html-validate:recommended", "html-validate:a11y"],
  rules: {
    "long-title": "off",
    "no-trailing-whitespace": "off",
    "require-sri": "off",
  },
};
