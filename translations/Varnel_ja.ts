<?xml version="1.0" encoding="utf-8"?>
<!DOCTYPE TS>
<TS version="2.1" language="ja">
<context>
    <name>QObject</name>
    <message>
        <source>Searching examples</source>
        <translation>サンプルを検索しています</translation>
    </message>
    <message>
        <source>Search error: request return null object</source>
        <translation>検索エラー: 要求に対して空のオブジェクトが返されました</translation>
    </message>
    <message>
        <source>Search error: request return wrong data - no id field</source>
        <translation>検索エラー: 要求に対して不正なデータが返されました - id フィールドがありません</translation>
    </message>
    <message>
        <source>API client is ready</source>
        <translation>API クライアントの準備ができました</translation>
    </message>
    <message>
        <source>Repository error: group id not found - unable to fetch examples</source>
        <translation>リポジトリエラー: グループ ID が見つかりません - サンプルを取得できません</translation>
    </message>
    <message>
        <source>Fetch examples</source>
        <translation>サンプルを取得しています</translation>
    </message>
    <message>
        <source>Fetch error: request return null object</source>
        <translation>取得エラー: 要求に対して空のオブジェクトが返されました</translation>
    </message>
    <message>
        <source>Fetch error: request return wrong data - no projects field</source>
        <translation>取得エラー: 要求に対して不正なデータが返されました - projects フィールドがありません</translation>
    </message>
    <message>
        <source>Downloading example: %1</source>
        <translation>サンプルをダウンロードしています: %1</translation>
    </message>
    <message>
        <source>Unable to download image: %1</source>
        <translation>画像をダウンロードできません: %1</translation>
    </message>
    <message>
        <source>Network error: %1</source>
        <translation>ネットワークエラー: %1</translation>
    </message>
    <message>
        <source>example</source>
        <translation>サンプル</translation>
    </message>
    <message>
        <source>Description</source>
        <translation>説明</translation>
    </message>
    <message>
        <source>This file is used by SDK to show image for example inside Welcome screen.
It is not the part of the example.</source>
        <translation>このファイルは、ようこそ画面にサンプルの画像を表示するために SDK が使用します。
サンプルの一部ではありません。</translation>
    </message>
    <message>
        <source>Unable to cast repository from: %1</source>
        <translation>オブジェクトはリポジトリではありません: %1</translation>
    </message>
    <message>
        <source>Skip registering example %1 - unable to find repository for name: %2</source>
        <translation>サンプル %1 は登録されません - 次の名前のリポジトリが見つかりません: %2</translation>
    </message>
    <message>
        <source>There was an error while creating example mainfest</source>
        <translation>サンプルのマニフェストの作成中にエラーが発生しました</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::DownloadService</name>
    <message>
        <source>API client is not ready - restarting</source>
        <translation>API クライアントの準備ができていません - 再起動しています</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for name: %1</source>
        <translation>サンプルはダウンロードされません - 次の名前のリポジトリが見つかりません: %1</translation>
    </message>
    <message>
        <source>Skip downloading examples - unable to find repository for url: %1</source>
        <translation>サンプルはダウンロードされません - 次の URL のリポジトリが見つかりません: %1</translation>
    </message>
    <message>
        <source>The data is not downloaded for example: %1</source>
        <translation>次のサンプルのデータはダウンロードされていません: %1</translation>
    </message>
    <message>
        <source>Skip saving example %1 - unable to find repository name for url: %2</source>
        <translation>サンプル %1 は保存されません - 次の URL のリポジトリの名前が見つかりません: %2</translation>
    </message>
    <message>
        <source>Unpacking example: %1</source>
        <translation>サンプルを展開しています: %1</translation>
    </message>
    <message>
        <source>Downloaded file is not an archive</source>
        <translation>ダウンロードしたファイルはアーカイブではありません</translation>
    </message>
    <message>
        <source>There was an error while unarchiving</source>
        <translation>アーカイブの展開中にエラーが発生しました</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::ExamplesDialog</name>
    <message>
        <source>Select Examples to Install</source>
        <translation>インストールするサンプルを選択</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>サンプルをフィルタします</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Name:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Description:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;名前:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;説明:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;更新日時:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;パス:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%4&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::OptionsWidget</name>
    <message>
        <source>Add or remove examples from selected repository</source>
        <translation>選択したリポジトリのサンプルを追加または削除します</translation>
    </message>
    <message>
        <source>Installed Examples</source>
        <translation>インストール済みサンプル</translation>
    </message>
    <message>
        <source>Repository:</source>
        <translation>リポジトリ:</translation>
    </message>
    <message>
        <source>Selected repository name</source>
        <translation>選択したリポジトリの名前</translation>
    </message>
    <message>
        <source>List of installed examples</source>
        <translation>インストール済みサンプルの一覧</translation>
    </message>
    <message>
        <source>Filter examples</source>
        <translation>サンプルをフィルタします</translation>
    </message>
    <message>
        <source>Add examples from online repository</source>
        <translation>オンラインのリポジトリからサンプルを追加します</translation>
    </message>
    <message>
        <source>Add...</source>
        <translation>追加...</translation>
    </message>
    <message>
        <source>Remove selected installed examples</source>
        <translation>選択したインストール済みサンプルを削除します</translation>
    </message>
    <message>
        <source>Remove</source>
        <translation>削除</translation>
    </message>
    <message>
        <source>Online Updates</source>
        <translation>オンライン更新</translation>
    </message>
    <message>
        <source>Check every</source>
        <translation>確認の間隔</translation>
    </message>
    <message>
        <source>Timeout for checking example updates and downloading new examples.
Set 0 to disable automatic updates.</source>
        <translation>サンプルの更新を確認し、新しいサンプルをダウンロードする間隔です。
0 に設定すると自動更新が無効になります。</translation>
    </message>
    <message>
        <source>day(s)</source>
        <translation>日</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Location:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Updated:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Status:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;パス:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;更新日時:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;状態:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%3&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Folder:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;Link:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</source>
        <translation>&lt;table&gt;&lt;tbody&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;フォルダ:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%1&lt;/td&gt;&lt;/tr&gt;&lt;tr&gt;&lt;td style=&quot;width: 40%;&quot;&gt;リンク:&amp;nbsp;&lt;/td&gt;&lt;td style=&quot;width: 60%;&quot;&gt;%2&lt;/td&gt;&lt;/tr&gt;&lt;/tbody&gt;&lt;/table&gt;</translation>
    </message>
    <message>
        <source>Updated</source>
        <translation>更新済み</translation>
    </message>
    <message>
        <source>Update available</source>
        <translation>更新があります</translation>
    </message>
    <message>
        <source>Examples Not Found</source>
        <translation>サンプルが見つかりません</translation>
    </message>
    <message>
        <source>Check your online connection and try again later!</source>
        <translation>インターネット接続を確認し、後でもう一度お試しください。</translation>
    </message>
    <message>
        <source>Examples Not Selected</source>
        <translation>サンプルが選択されていません</translation>
    </message>
    <message>
        <source>Select examples to remove, press Remove button, then press Apply button to apply changes.</source>
        <translation>削除するサンプルを選択して [削除] をクリックし、[適用] をクリックして変更を適用してください。</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::Plugin</name>
    <message>
        <source>Open location...</source>
        <translation>場所を開く...</translation>
    </message>
</context>
<context>
    <name>Varnel::Internal::VarnelPlugin</name>
    <message>
        <source>Examples</source>
        <translation>サンプル</translation>
    </message>
</context>
</TS>
