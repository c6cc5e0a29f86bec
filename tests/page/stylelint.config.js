// How the page's style is checked.

export default {
  extends: "stylelint-config-standard",
  rules: {
    "declaration-block-single-line-max-declarations": 2,
    "property-no-vendor-prefix": null,
    "no-descending-specificity": null,
    "rule-empty-line-before": null,
  },
};
