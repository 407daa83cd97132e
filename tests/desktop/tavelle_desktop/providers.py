"""The providers that a person can choose, as the stand-in serves them."""

from dataclasses import dataclass


@dataclass(frozen=True)
class Provider:
    name: str  # as the settings store it
    model: str
    version: str  # the path of its base URL
    account: str = ""  # of its secret in the keyring; none: it wants no secret
    is_hosted: bool = False  # at an address that no setting changes

    def program(self, shipped):
        """The Tavelle that finds the stand-in: what is shipped, but for the hosted service, which is where the build says."""
        return shipped.with_name("tavelle-demo") if self.is_hosted else shipped

    def port(self, shipped):
        """Where the stand-in has to listen; 0: anywhere."""
        return int(shipped.with_name("tavelle-demo.port").read_text(encoding="ascii")) if self.is_hosted else 0


PROVIDERS = {
    each.name: each
    for each in (
        Provider("tavelle", "tavelle", "", "tavelle_auth_token", is_hosted=True),
        Provider("openai", "gpt-4o", "/v1", "apiKey_openai"),
        Provider("anthropic", "claude-sonnet-4-20250514", "/v1", "apiKey_anthropic"),
        Provider("gemini", "gemini-2.0-flash", "/v1beta", "apiKey_gemini"),
        Provider("ollama", "llama3.2", "/v1"),
        Provider("custom", "stand-in", "/v1", "apiKey_custom"),
    )
}
